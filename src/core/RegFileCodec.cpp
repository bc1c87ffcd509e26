#include "core/RegFileCodec.h"

#include "core/RegistryStore.h"

#include <QStringDecoder>

namespace tarvo {

namespace {

const QString kRegedit4 = QStringLiteral("REGEDIT4");
const QString kRegedit5 = QStringLiteral("Windows Registry Editor Version 5.00");

// UTF-16 text as Windows keeps it may hold halves of surrogate pairs, which have no UTF-8 form: they
// read as the replacement character, as the store would write them back, so that a setting reads the
// same after the store wrote it.
QString decodeUtf16(const QByteArray& bytes, QStringDecoder::Encoding encoding) {
    QString text = QStringDecoder(encoding).decode(bytes);
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i].isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate())
            ++i;
        else if (text[i].isSurrogate())
            text[i] = QChar::ReplacementCharacter;
    }
    return text;
}

QString decode(const QByteArray& bytes) {
    if (bytes.startsWith("\xFF\xFE"))
        return decodeUtf16(bytes.mid(2), QStringDecoder::Utf16LE);
    if (bytes.startsWith("\xFE\xFF"))
        return decodeUtf16(bytes.mid(2), QStringDecoder::Utf16BE);
    const QByteArray body = bytes.startsWith("\xEF\xBB\xBF") ? bytes.mid(3) : bytes;
    QStringDecoder utf8(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString text = utf8.decode(body);
    if (!utf8.hasError())
        return text;
    return QString::fromLatin1(body);
}

// A cursor over one line, for the quoted strings of value lines.
class LineReader {
public:
    LineReader(QStringView line, const QString& file, int lineNo)
        : line_(line)
        , file_(file)
        , lineNo_(lineNo) {}

    [[noreturn]] void fail(const QString& reason) const { throw RegParseError(file_, lineNo_, reason); }
    bool atEnd() const { return pos_ >= line_.size(); }
    QChar peek() const { return atEnd() ? QChar() : line_[pos_]; }
    void skipBlanks() {
        while (!atEnd() && (peek() == QLatin1Char(' ') || peek() == QLatin1Char('\t')))
            ++pos_;
    }
    bool take(QChar c) {
        if (peek() != c)
            return false;
        ++pos_;
        return true;
    }
    QStringView rest() const { return line_.mid(pos_); }

    // Reads a string whose opening quote is at the cursor, resolving the escapes.
    QString quoted(const QString& what) {
        if (!take(QLatin1Char('"')))
            fail(QStringLiteral("%1 must be in double quotes").arg(what));
        QString out;
        while (true) {
            if (atEnd())
                fail(QStringLiteral("%1 is not closed with a double quote").arg(what));
            const QChar c = line_[pos_++];
            if (c == QLatin1Char('"'))
                return out;
            if (c != QLatin1Char('\\') || atEnd()) {
                out.append(c);
                continue;
            }
            const QChar e = line_[pos_++];
            switch (e.unicode()) {
            case u'\\':
            case u'"':
                out.append(e);
                break;
            case u'n':
                out.append(QLatin1Char('\n'));
                break;
            case u'r':
                out.append(QLatin1Char('\r'));
                break;
            default: // an unknown escape stands for itself, backslash included
                out.append(c);
                out.append(e);
            }
        }
    }

private:
    QStringView line_;
    const QString& file_;
    int lineNo_;
    qsizetype pos_ = 0;
};

// Lines end in CRLF, LF, or CR alone (as old Mac editors wrote them).
QList<QStringView> splitLines(QStringView text) {
    QList<QStringView> lines;
    qsizetype start = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] != QLatin1Char('\r') && text[i] != QLatin1Char('\n'))
            continue;
        lines.append(text.mid(start, i - start));
        if (text[i] == QLatin1Char('\r') && i + 1 < text.size() && text[i + 1] == QLatin1Char('\n'))
            ++i;
        start = i + 1;
    }
    lines.append(text.mid(start));
    return lines;
}

bool isComment(QStringView trimmed) {
    return trimmed.startsWith(QLatin1Char(';')) || trimmed.startsWith(QLatin1Char('#'));
}

// Whether a line can carry on the data of a typed value whose line ended in "\": a line that opens
// a key or a value starts something new, so a stray "\" does not swallow it.
bool continuesData(QStringView trimmed) {
    return !trimmed.startsWith(QLatin1Char('[')) && !trimmed.startsWith(QLatin1Char('"')) &&
           !trimmed.startsWith(QLatin1Char('@'));
}

// The data that one line of a typed value carries. Typed data is hex digits, commas and a continuing
// "\" only, so a ";" on such a line begins a comment that runs to its end, as Windows reads it: after
// the last byte, and after a "\" that carries the value on to the next line.
QStringView typedDataOf(QStringView line) {
    const qsizetype comment = line.indexOf(QLatin1Char(';'));
    return (comment < 0 ? line : line.left(comment)).trimmed();
}

QByteArray parseHexBytes(QStringView data, const LineReader& reader) {
    QByteArray bytes;
    for (QStringView part : data.split(QLatin1Char(','))) {
        part = part.trimmed();
        if (part.isEmpty())
            continue;
        bool ok = false;
        const uint v = part.toUInt(&ok, 16);
        if (!ok || v > 0xFF || part.size() > 2)
            reader.fail(QStringLiteral("\"%1\" is not a hexadecimal byte").arg(part.toString()));
        bytes.append(static_cast<char>(v));
    }
    return bytes;
}

// A hex(1) value is a text value spelled out as bytes: UTF-16LE in version 5 files, the 8-bit code
// page in REGEDIT4 files; either ends with a terminating zero, which is not part of the text.
QString textOfHexString(const QByteArray& bytes, bool unicode) {
    QString text = unicode ? decodeUtf16(bytes, QStringDecoder::Utf16LE) : decode(bytes);
    while (text.endsWith(QChar(0)))
        text.chop(1);
    return text;
}

} // namespace

RegParseError::RegParseError(QString file, int line, QString reason)
    : std::runtime_error(QStringLiteral("%1:%2: %3").arg(file, QString::number(line), reason).toStdString())
    , file_(std::move(file))
    , line_(line)
    , reason_(std::move(reason)) {}

QString RegParseError::message() const {
    return QStringLiteral("%1, line %2: %3").arg(file_, QString::number(line_), reason_);
}

bool isBlankRegFile(const QByteArray& bytes) {
    return decode(bytes).trimmed().isEmpty();
}

std::vector<RegStatement> parseRegFile(const QByteArray& bytes, const QString& fileName) {
    const QString text = decode(bytes);
    const QList<QStringView> lines = splitLines(text);
    std::vector<RegStatement> out;

    int lineNo = 0;
    bool headerSeen = false;
    bool unicode = false;
    std::optional<QString> currentKey; // nothing before the first key header
    bool currentKeyDeleted = false;

    for (qsizetype i = 0; i < lines.size(); ++i) {
        lineNo = static_cast<int>(i) + 1;
        const QStringView trimmed = lines[i].trimmed();
        if (trimmed.isEmpty())
            continue;
        if (!headerSeen) {
            if (trimmed == kRegedit4 || trimmed == kRegedit5) {
                headerSeen = true;
                unicode = trimmed == kRegedit5;
                continue;
            }
            throw RegParseError(fileName, lineNo,
                                QStringLiteral("not a registry file: it must begin with \"%1\" or \"%2\"")
                                    .arg(kRegedit4, kRegedit5));
        }
        if (isComment(trimmed))
            continue;

        if (trimmed.startsWith(QLatin1Char('['))) {
            if (!trimmed.endsWith(QLatin1Char(']')) || trimmed.size() < 3)
                throw RegParseError(fileName, lineNo,
                                    QStringLiteral("the key name is not closed with \"]\""));
            QStringView path = trimmed.mid(1, trimmed.size() - 2);
            const bool remove = path.startsWith(QLatin1Char('-'));
            if (remove)
                path = path.mid(1);
            while (path.endsWith(QLatin1Char('\\'))) // "[key\]" is the key itself
                path.chop(1);
            if (path.isEmpty())
                throw RegParseError(fileName, lineNo, QStringLiteral("the key name is empty"));
            currentKey = path.toString();
            currentKeyDeleted = remove;
            out.push_back({remove ? RegStatement::Kind::DeleteKey : RegStatement::Kind::CreateKey,
                           *currentKey,
                           {},
                           {},
                           lineNo});
            continue;
        }

        if (!trimmed.startsWith(QLatin1Char('"')) && !trimmed.startsWith(QLatin1Char('@')))
            throw RegParseError(fileName, lineNo,
                                QStringLiteral("expected a key in [brackets] or a \"name\"=value line"));
        if (!currentKey)
            throw RegParseError(fileName, lineNo, QStringLiteral("a value comes before any key"));

        LineReader reader(trimmed, fileName, lineNo);
        QString name;
        bool defaultValue = reader.take(QLatin1Char('@'));
        if (!defaultValue) {
            name = reader.quoted(QStringLiteral("the value name"));
            defaultValue = name.isEmpty(); // "" names the default value as @ does
        }
        reader.skipBlanks();
        if (!reader.take(QLatin1Char('=')))
            reader.fail(QStringLiteral("expected \"=\" after the value name"));
        reader.skipBlanks();

        RegStatement st{RegStatement::Kind::SetValue, *currentKey, name, {}, lineNo};
        bool typed = false; // typed data runs to the end of its (continued) line
        if (reader.take(QLatin1Char('-'))) {
            st.kind = RegStatement::Kind::DeleteValue;
        } else if (reader.peek() == QLatin1Char('"')) {
            st.text = reader.quoted(QStringLiteral("the value"));
        } else {
            // A typed value: "dword:0000000f", "hex:..", "hex(1):..", possibly continued with "\" over
            // the following lines, between which blank and comment lines may sit; any line may end in
            // a comment of its own. A "\" at the end of the file continues into nothing.
            typed = true;
            QString data = typedDataOf(reader.rest()).toString();
            while (data.endsWith(QLatin1Char('\\'))) {
                data.chop(1);
                qsizetype next = i + 1;
                while (next < lines.size() &&
                       (lines[next].trimmed().isEmpty() || isComment(lines[next].trimmed())))
                    ++next;
                if (next >= lines.size() || !continuesData(lines[next].trimmed()))
                    break;
                i = next;
                data += typedDataOf(lines[i]).toString();
            }
            const qsizetype colon = data.indexOf(QLatin1Char(':'));
            if (colon < 0)
                reader.fail(QStringLiteral("the value must be a \"quoted text\", - or type:data"));
            const QString type = data.left(colon).trimmed().toLower();
            const QStringView payload = QStringView(data).mid(colon + 1);
            if (type == QLatin1String("hex(1)")) {
                st.text = textOfHexString(parseHexBytes(payload, reader), unicode);
            } else if (type == QLatin1String("dword") || type == QLatin1String("hex") ||
                       type.startsWith(QLatin1String("hex("))) {
                if (type == QLatin1String("dword")) {
                    bool ok = false;
                    (void)payload.trimmed().toUInt(&ok, 16);
                    if (!ok || payload.trimmed().size() > 8)
                        reader.fail(QStringLiteral("\"%1\" is not a dword value").arg(payload.toString()));
                } else {
                    parseHexBytes(payload, reader);
                }
                st.kind = RegStatement::Kind::Unsupported;
                st.text = type;
            } else {
                reader.fail(QStringLiteral("unknown value type \"%1\"").arg(type));
            }
        }
        reader.skipBlanks();
        if (!typed && !reader.atEnd() && reader.peek() != QLatin1Char(';'))
            reader.fail(
                QStringLiteral("unexpected text after the value: \"%1\"").arg(reader.rest().toString()));
        if (defaultValue) {
            st.kind = RegStatement::Kind::Unsupported;
            st.text = QStringLiteral("default value (@)");
        }
        if (currentKeyDeleted) // values below a key being deleted are ignored, as the format intends
            continue;
        out.push_back(std::move(st));
    }
    if (!headerSeen)
        throw RegParseError(fileName, std::max(lineNo, 1),
                            QStringLiteral("not a registry file: it is empty"));
    return out;
}

std::optional<QString> sectionOfKeyPath(const QString& keyPath) {
    if (keyPath.compare(kRegistryRoot, Qt::CaseInsensitive) == 0)
        return QString();
    const qsizetype n = kRegistryRoot.size();
    if (keyPath.size() > n + 1 && keyPath.at(n) == QLatin1Char('\\') &&
        QStringView(keyPath).left(n).compare(kRegistryRoot, Qt::CaseInsensitive) == 0)
        return keyPath.mid(n + 1);
    return std::nullopt;
}

QString keyPathOfSection(const QString& section) {
    return section.isEmpty() ? kRegistryRoot : kRegistryRoot + QLatin1Char('\\') + section;
}

namespace {

QString escaped(const QString& s) {
    QString out;
    out.reserve(s.size() + 2);
    for (QChar c : s) {
        switch (c.unicode()) {
        case u'\\':
            out += QLatin1String("\\\\");
            break;
        case u'"':
            out += QLatin1String("\\\"");
            break;
        case u'\n':
            out += QLatin1String("\\n");
            break;
        case u'\r':
            out += QLatin1String("\\r");
            break;
        default:
            out += c;
        }
    }
    return out;
}

} // namespace

QByteArray serializeRegFile(const RegistryModel& model, const std::optional<QString>& onlySection) {
    QString text = kRegedit4 + QLatin1String("\n\n");
    const QString only = onlySection ? RegistryModel::fold(*onlySection) : QString();
    for (const QString& section : model.sections()) {
        if (onlySection && !only.isEmpty()) {
            const QString folded = RegistryModel::fold(section);
            if (folded != only && !folded.startsWith(only + QLatin1Char('\\')))
                continue;
        }
        text += QLatin1Char('[') + keyPathOfSection(section) + QLatin1String("]\n");
        for (const QString& key : model.keys(section))
            text += QLatin1Char('"') + escaped(key) + QLatin1String("\"=\"") +
                    escaped(model.value(section, key).value_or(QString())) + QLatin1String("\"\n");
        text += QLatin1Char('\n');
    }
    return text.toUtf8();
}

} // namespace tarvo
