#include "support/AviReader.h"

#include <QtEndian>

#include <cmath>
#include <functional>
#include <map>

AviFile readAvi(const QByteArray& b) {
    AviFile f;
    const auto u32 = [&](qsizetype at) { return qFromLittleEndian<std::uint32_t>(b.constData() + at); };
    const auto u16 = [&](qsizetype at) { return qFromLittleEndian<std::uint16_t>(b.constData() + at); };
    const auto check = [&](bool ok, const QString& breach) {
        if (!ok)
            f.errors << breach;
    };
    if (b.size() < 12 || !b.startsWith("RIFF") || b.mid(8, 4) != "AVI " ||
        std::uint64_t(u32(4)) + 8 != std::uint64_t(b.size())) {
        f.errors << QStringLiteral("not a RIFF 'AVI ' file of the size it gives");
        return f;
    }
    // Each chunk by its path of list types ("/hdrl/strl/strh"): where its data starts, and its size.
    std::map<QByteArray, std::pair<qsizetype, std::uint32_t>> chunks;
    std::vector<qsizetype> frameAt;
    const std::function<void(qsizetype, qsizetype, const QByteArray&)> walk = [&](qsizetype at, qsizetype end,
                                                                                  const QByteArray& list) {
        while (at + 8 <= end && at + 8 + u32(at + 4) <= end) {
            const std::uint32_t size = u32(at + 4);
            const bool isList = b.mid(at, 4) == "LIST";
            const QByteArray path = list + '/' + b.mid(isList ? at + 8 : at, 4);
            check(path == "/movi/00dc" || !chunks.count(path),
                  QStringLiteral("a second %1").arg(QLatin1String(path)));
            chunks[path] = {at + 8, size};
            if (isList)
                walk(at + 12, at + 8 + size, path);
            else if (path == "/movi/00dc") {
                f.frames.push_back(b.mid(at + 8, size));
                frameAt.push_back(at);
            }
            at += 8 + size + size % 2; // an odd chunk is followed by a pad byte
        }
        check(at == end, QStringLiteral("%1 ends in a chunk that overruns it").arg(QLatin1String(list)));
    };
    walk(12, b.size(), {});
    // Exactly these chunks, each of its size (0: any).
    const std::map<QByteArray, std::uint32_t> layout{
        {"/hdrl", 0}, {"/hdrl/avih", 56}, {"/hdrl/strl", 0}, {"/hdrl/strl/strh", 56}, {"/hdrl/strl/strf", 40},
        {"/movi", 0}, {"/movi/00dc", 0},  {"/idx1", 0}};
    for (const auto& [path, size] : layout)
        check(chunks.count(path) && (!size || chunks[path].second == size),
              QStringLiteral("no %1 of its size").arg(QLatin1String(path)));
    check(chunks.size() == layout.size(), "chunks of a kind that does not belong");
    if (!f.errors.isEmpty())
        return f;

    const qsizetype avih = chunks["/hdrl/avih"].first, strh = chunks["/hdrl/strl/strh"].first;
    const qsizetype strf = chunks["/hdrl/strl/strf"].first, movi = chunks["/movi"].first;
    const auto count = static_cast<std::uint32_t>(f.frames.size());
    f.microSecPerFrame = u32(avih);
    f.width = u32(avih + 32);
    f.height = u32(avih + 36);
    qsizetype largest = 0;
    for (const QByteArray& frame : f.frames)
        largest = std::max(largest, frame.size());
    // One stream, the flag that says there is an index (0x10), and room for the largest frame's chunk.
    check((u32(avih + 12) & 0x10) && u32(avih + 16) == count && u32(avih + 24) == 1 &&
              u32(avih + 28) >= largest + 8,
          "'avih' does not describe the frames");
    check(b.mid(strh, 8) == "vidsMJPG" && u32(strh + 32) == count && u16(strh + 52) == f.width &&
              u16(strh + 54) == f.height && u32(strh + 24) > 0 &&
              std::abs(1e6 * u32(strh + 20) / u32(strh + 24) - f.microSecPerFrame) < 1,
          "'strh' does not describe an MJPEG stream of the frames at the rate of 'avih'");
    check(u32(strf) == 40 && u32(strf + 4) == f.width && u32(strf + 8) == f.height &&
              b.mid(strf + 16, 4) == "MJPG",
          "'strf' is not the BITMAPINFOHEADER of MJPEG pictures of the picture size");
    // The index names every frame in order, as a key frame (0x10), by its offset from the 'movi' type.
    const qsizetype idx1 = chunks["/idx1"].first;
    check(chunks["/idx1"].second == 16 * count, "not one index entry per frame");
    for (std::uint32_t i = 0; i < count && idx1 + 16 * (i + 1) <= b.size(); ++i) {
        const qsizetype e = idx1 + 16 * i;
        check(b.mid(e, 4) == "00dc" && u32(e + 4) == 0x10 && u32(e + 8) == frameAt[i] - movi &&
                  u32(e + 12) == f.frames[i].size(),
              QStringLiteral("index entry %1 does not name frame %1 as a key frame").arg(i));
    }
    return f;
}
