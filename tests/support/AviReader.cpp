#include "support/AviReader.h"

#include <QtEndian>

namespace {

class Reader {
public:
    explicit Reader(const QByteArray& bytes)
        : b_(bytes) {}

    AviFile read() {
        if (b_.size() < 12 || b_.left(4) != "RIFF" || b_.mid(8, 4) != "AVI ") {
            f_.errors << QStringLiteral("not a RIFF 'AVI ' file");
            return f_;
        }
        if (u32(4) + 8 != static_cast<std::uint64_t>(b_.size()))
            f_.errors << QStringLiteral("RIFF size %1 does not match the file's %2 bytes")
                             .arg(u32(4))
                             .arg(b_.size());
        walk(12, 8 + std::min<qsizetype>(u32(4), b_.size() - 8), QByteArray());
        for (const char* needed : {"avih", "strh", "strf", "movi", "idx1"})
            if (!seen_.contains(needed))
                f_.errors << QStringLiteral("no '%1'").arg(QLatin1String(needed));
        checkIndex();
        return f_;
    }

private:
    std::uint32_t u32(qsizetype at) const { return qFromLittleEndian<std::uint32_t>(b_.constData() + at); }
    std::uint16_t u16(qsizetype at) const { return qFromLittleEndian<std::uint16_t>(b_.constData() + at); }

    // The chunks between `at` and `end`, inside the list of type `list`.
    void walk(qsizetype at, qsizetype end, const QByteArray& list) {
        while (at < end) {
            if (at + 8 > end) {
                f_.errors << QStringLiteral("truncated chunk header at %1").arg(at);
                return;
            }
            const QByteArray id = b_.mid(at, 4);
            const std::uint32_t size = u32(at + 4);
            const qsizetype data = at + 8;
            if (data + size > end) {
                f_.errors << QStringLiteral("chunk '%1' at %2 runs past its parent")
                                 .arg(QString::fromLatin1(id))
                                 .arg(at);
                return;
            }
            chunk(id, data, size, list);
            at = data + size + (size % 2);
        }
        if (at != end)
            f_.errors << QStringLiteral("list '%1' ends inside a pad byte").arg(QString::fromLatin1(list));
    }

    void chunk(const QByteArray& id, qsizetype data, std::uint32_t size, const QByteArray& list) {
        if (id == "LIST") {
            const QByteArray type = b_.mid(data, 4);
            seen_ << type;
            if (type == "movi")
                moviType_ = data;
            walk(data + 4, data + size, type);
            return;
        }
        seen_ << id;
        if (id == "avih" && list == "hdrl") {
            if (size != 56)
                f_.errors << QStringLiteral("'avih' of %1 bytes").arg(size);
            f_.microSecPerFrame = u32(data);
            f_.flags = u32(data + 12);
            f_.totalFrames = u32(data + 16);
            f_.streams = u32(data + 24);
            f_.suggestedBufferSize = u32(data + 28);
            f_.width = u32(data + 32);
            f_.height = u32(data + 36);
        } else if (id == "strh" && list == "strl") {
            if (size != 56)
                f_.errors << QStringLiteral("'strh' of %1 bytes").arg(size);
            f_.streamType = b_.mid(data, 4);
            f_.handler = b_.mid(data + 4, 4);
            f_.scale = u32(data + 20);
            f_.rate = u32(data + 24);
            f_.length = u32(data + 32);
            if (u16(data + 52) != f_.width || u16(data + 54) != f_.height)
                f_.errors << QStringLiteral("'strh' frame rectangle differs from the picture size");
        } else if (id == "strf" && list == "strl") {
            if (size != 40 || u32(data) != 40)
                f_.errors << QStringLiteral("'strf' is not a BITMAPINFOHEADER");
            f_.bitmapWidth = static_cast<std::int32_t>(u32(data + 4));
            f_.bitmapHeight = static_cast<std::int32_t>(u32(data + 8));
            f_.compression = b_.mid(data + 16, 4);
        } else if (id == "00dc" && list == "movi") {
            f_.frames.push_back(b_.mid(data, size));
        } else if (id == "idx1") {
            if (size % 16)
                f_.errors << QStringLiteral("'idx1' of %1 bytes is not whole entries").arg(size);
            for (qsizetype e = data; e + 16 <= data + size; e += 16)
                f_.index.push_back({b_.mid(e, 4), u32(e + 4), u32(e + 8), u32(e + 12)});
        } else {
            f_.errors << QStringLiteral("unexpected chunk '%1' in '%2'")
                             .arg(QString::fromLatin1(id), QString::fromLatin1(list));
        }
    }

    // Each index entry names a chunk by its offset from the 'movi' type code.
    void checkIndex() {
        for (const AviIndexEntry& e : f_.index) {
            const qsizetype at = moviType_ + e.offset;
            if (moviType_ < 0 || at + 8 > b_.size() || b_.mid(at, 4) != e.id || u32(at + 4) != e.size)
                f_.errors
                    << QStringLiteral("index entry at offset %1 does not point at its chunk").arg(e.offset);
        }
    }

    const QByteArray& b_;
    AviFile f_;
    QList<QByteArray> seen_;
    qsizetype moviType_ = -1;
};

} // namespace

AviFile readAvi(const QByteArray& bytes) {
    return Reader(bytes).read();
}
