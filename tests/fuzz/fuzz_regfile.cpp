// Registry files as users bring them. The first byte chooses the encoding: "U" writes the rest, read
// as text, as a version 5 file does (UTF-16LE with byte-order mark), so that mutations act on its
// text; any other byte hands the rest over as it is (the 8-bit path, or raw UTF-16 with its mark).
// A file is refused with RegParseError or read; what it sets is written back and must read the same.
#include "core/RegFileCodec.h"

#include <QStringEncoder>

#include <cstdint>
#include <cstdlib>

using namespace tarvo;

namespace {

// The settings that the statements leave, as the store and regedit apply them.
RegistryModel apply(const std::vector<RegStatement>& statements) {
    RegistryModel model;
    for (const RegStatement& st : statements) {
        using enum RegStatement::Kind;
        const std::optional<QString> section = sectionOfKeyPath(st.keyPath);
        if (section && st.kind == CreateKey)
            model.ensureSection(*section);
        else if (section && st.kind == DeleteKey)
            model.deleteSection(*section);
        else if (section && st.kind == SetValue)
            model.setValue(*section, st.name, st.text);
        else if (section && st.kind == DeleteValue)
            model.deleteValue(*section, st.name);
    }
    return model;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0)
        return 0;
    QByteArray bytes(reinterpret_cast<const char*>(data) + 1, static_cast<qsizetype>(size - 1));
    if (data[0] == 'U')
        bytes = QStringEncoder(QStringEncoder::Utf16LE, QStringEncoder::Flag::WriteBom)
                    .encode(QString::fromUtf8(bytes));
    (void)isBlankRegFile(bytes);
    RegistryModel model;
    try {
        model = apply(parseRegFile(bytes, QStringLiteral("fuzz.reg")));
    } catch (const RegParseError&) {
        return 0;
    }
    // What the program writes it must read back, unchanged; a refusal here aborts the run as well.
    if (!(apply(parseRegFile(serializeRegFile(model), QStringLiteral("written.reg"))) == model))
        std::abort();
    return 0;
}
