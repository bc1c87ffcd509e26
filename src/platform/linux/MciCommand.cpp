#include "platform/linux/MciCommand.h"

#include <QStringList>

#include <limits>

namespace tarvo {

namespace {

bool isBlank(QChar c) {
    return c == QLatin1Char(' ') || c == QLatin1Char('\t');
}

// The words of a command; a quoted word keeps its blanks and loses its quotes. An unclosed quote runs
// to the end.
QStringList words(QStringView text) {
    QStringList out;
    qsizetype i = 0;
    while (i < text.size()) {
        while (i < text.size() && isBlank(text[i]))
            ++i;
        if (i >= text.size())
            break;
        if (text[i] == QLatin1Char('"')) {
            const qsizetype close = text.indexOf(QLatin1Char('"'), i + 1);
            const qsizetype end = close < 0 ? text.size() : close;
            out << text.mid(i + 1, end - i - 1).toString();
            i = end + 1;
            continue;
        }
        const qsizetype start = i;
        while (i < text.size() && !isBlank(text[i]))
            ++i;
        out << text.mid(start, i - start).toString();
    }
    return out;
}

bool is(const QString& word, const char* keyword) {
    return word.compare(QLatin1String(keyword), Qt::CaseInsensitive) == 0;
}

template <typename T>
bool number(const QString& word, T& out) {
    bool ok = false;
    if constexpr (std::is_unsigned_v<T>)
        out = word.toULongLong(&ok);
    else
        out = static_cast<T>(word.toLongLong(&ok));
    return ok;
}

std::variant<MciCommand, int> parseOpen(const QStringList& w) {
    if (w.size() < 2)
        return mcierr::MissingParameter;
    MciCommand c;
    c.verb = MciCommand::Verb::Open;
    c.file = w[1];
    c.device = w[1];
    for (qsizetype i = 2; i < w.size(); i += 2) {
        if (i + 1 >= w.size())
            return mcierr::MissingStringArgument;
        const QString& value = w[i + 1];
        if (is(w[i], "type"))
            c.type = value;
        else if (is(w[i], "alias"))
            c.device = value;
        else if (is(w[i], "parent")) {
            if (!number(value, c.parent))
                return mcierr::BadInteger;
        } else if (is(w[i], "style")) {
            if (!number(value, c.style))
                return mcierr::BadInteger;
        } else
            return mcierr::UnrecognizedKeyword;
    }
    return c;
}

std::variant<MciCommand, int> parsePut(const QStringList& w) {
    if (w.size() != 8 || !is(w[2], "window") || !is(w[3], "at"))
        return w.size() < 8 ? mcierr::MissingParameter : mcierr::UnrecognizedKeyword;
    int v[4] = {};
    for (int k = 0; k < 4; ++k) {
        bool ok = false;
        v[k] = w[4 + k].toInt(&ok);
        if (!ok)
            return mcierr::BadInteger;
    }
    // QRect keeps the far edge as (left + width) - 1 and gives the width back as (far - left) + 1, every
    // step in int: a window for which a step would pass the range of int is out of range, not wrapped.
    const auto fits = [](long long n) {
        return n >= std::numeric_limits<int>::min() && n <= std::numeric_limits<int>::max();
    };
    for (int k = 0; k < 2; ++k) {
        const long long start = v[k], size = v[k + 2];
        if (!fits(start + size) || !fits(start + size - 1) || !fits(size - 1))
            return mcierr::OutOfRange;
    }
    MciCommand c;
    c.verb = MciCommand::Verb::Put;
    c.device = w[1];
    c.window = QRect(v[0], v[1], v[2], v[3]);
    return c;
}

} // namespace

std::variant<MciCommand, int> parseMciCommand(QStringView text) {
    const QStringList w = words(text);
    if (w.isEmpty())
        return mcierr::MissingCommandString;
    if (is(w[0], "open"))
        return parseOpen(w);
    if (is(w[0], "put"))
        return parsePut(w);
    static const std::pair<const char*, MciCommand::Verb> simple[] = {{"play", MciCommand::Verb::Play},
                                                                      {"pause", MciCommand::Verb::Pause},
                                                                      {"resume", MciCommand::Verb::Resume},
                                                                      {"stop", MciCommand::Verb::Stop},
                                                                      {"close", MciCommand::Verb::Close}};
    for (const auto& [name, verb] : simple) {
        if (!is(w[0], name))
            continue;
        if (w.size() < 2)
            return mcierr::MissingParameter;
        MciCommand c;
        c.verb = verb;
        c.device = w[1];
        for (qsizetype i = 2; i < w.size(); ++i) {
            if (verb == MciCommand::Verb::Play && is(w[i], "repeat"))
                c.repeat = true;
            else
                return mcierr::UnrecognizedKeyword;
        }
        return c;
    }
    return mcierr::UnrecognizedCommand;
}

} // namespace tarvo
