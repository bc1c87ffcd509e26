#pragma once

#include "core/RegistryModel.h"

#include <QByteArray>
#include <QString>

#include <optional>
#include <stdexcept>
#include <vector>

namespace tarvo {

// One statement of a registry export file, in file order.
struct RegStatement {
    enum class Kind {
        CreateKey,   // [key]
        DeleteKey,   // [-key]
        SetValue,    // "name"="text" (or a text value written in hex(1) form)
        DeleteValue, // "name"=-
        Unsupported, // a value this store cannot hold (dword, binary, the default value "@" or "")
    };
    Kind kind;
    QString keyPath; // full path, as written but for a trailing backslash
    QString name;    // value name
    QString text;    // value text; for Unsupported, what kind of value it was
    int line;        // 1-based line of the statement
};

// A file that is not a well-formed registry export. The message names the file and the line.
class RegParseError : public std::runtime_error {
public:
    RegParseError(QString file, int line, QString reason);
    const QString& file() const { return file_; }
    int line() const { return line_; }
    const QString& reason() const { return reason_; }
    QString message() const;

private:
    QString file_;
    int line_;
    QString reason_;
};

// Reads a "REGEDIT4" file (UTF-8, or Latin-1 when it is not valid UTF-8) or a "Windows Registry Editor
// Version 5.00" file (UTF-16LE with byte-order mark; UTF-8 is accepted too). Text values understand the
// escapes \\ and \" of the format, and \n and \r for line breaks. Lines end in CRLF, LF or CR; ";" and
// "#" begin comment lines, and ";" a comment after a value (after each line of a typed value continued
// with "\" too); "[key\]" is "[key]"; "" names the default value as @ does. Throws RegParseError: one
// broken line refuses the whole file.
std::vector<RegStatement> parseRegFile(const QByteArray& bytes, const QString& fileName);

// Whether the bytes hold nothing but blanks and line breaks (a file that was created empty).
bool isBlankRegFile(const QByteArray& bytes);

// The section below the settings root that a key path names: "" for the root itself, nothing for a
// key outside it. Compared without regard to case.
std::optional<QString> sectionOfKeyPath(const QString& keyPath);
QString keyPathOfSection(const QString& section);

// Writes the sections as a "REGEDIT4" file in UTF-8. With `onlySection`, that section and those
// below it only.
QByteArray serializeRegFile(const RegistryModel& model, const std::optional<QString>& onlySection = {});

} // namespace tarvo
