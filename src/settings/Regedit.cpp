#include "settings/Regedit.h"

#include "core/RegFileCodec.h"
#include "core/RegistryStore.h"

#include <QFile>
#include <QSaveFile>
#include <QSet>

#include <algorithm>
#include <optional>

namespace tarvo {

namespace {

const char* const kUsage =
    "Usage: regedit [/s] file.reg [file.reg ...]   import settings (/s: silently)\n"
    "       regedit /e file.reg [key]             export the Tarvo Micropause settings\n";

bool isSwitch(const QString& arg, QLatin1String name) {
    return (arg.startsWith(QLatin1Char('/')) || arg.startsWith(QLatin1Char('-'))) &&
           arg.mid(1).compare(name, Qt::CaseInsensitive) == 0;
}

struct ImportCounts {
    int values = 0, deletedValues = 0, deletedKeys = 0;
};

// Applies the statements below our root to the store as one durable update; reports the rest.
ImportCounts apply(const std::vector<RegStatement>& statements, RegistryStore& store, QTextStream* report) {
    ImportCounts counts;
    QSet<QString> reportedKeys;
    StoreBatch batch(store);
    for (const RegStatement& st : statements) {
        const std::optional<QString> section = sectionOfKeyPath(st.keyPath);
        if (!section) {
            const QString folded = st.keyPath.toCaseFolded();
            if (report && !reportedKeys.contains(folded)) {
                reportedKeys.insert(folded);
                *report << "Skipped [" << st.keyPath << "] (line " << st.line
                        << "): not a Tarvo Micropause key\n";
            }
            continue;
        }
        switch (st.kind) {
        case RegStatement::Kind::CreateKey:
            store.ensureSection(*section);
            break;
        case RegStatement::Kind::DeleteKey:
            store.deleteSection(*section);
            ++counts.deletedKeys;
            break;
        case RegStatement::Kind::SetValue:
            store.setValue(*section, st.name, st.text);
            ++counts.values;
            break;
        case RegStatement::Kind::DeleteValue:
            store.deleteValue(*section, st.name);
            ++counts.deletedValues;
            break;
        case RegStatement::Kind::Unsupported:
            if (report)
                *report << "Skipped value \"" << st.name << "\" of [" << st.keyPath << "] (line " << st.line
                        << "): a " << st.text << " value is not a text setting\n";
            break;
        }
    }
    batch.finish();
    return counts;
}

int importFile(const QString& path, RegistryStore& store, bool silent, QTextStream& out, QTextStream& err) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        if (!silent)
            err << "regedit: cannot read " << path << ": " << file.errorString() << '\n';
        return 1;
    }
    std::vector<RegStatement> statements;
    try {
        statements = parseRegFile(file.readAll(), path);
    } catch (const RegParseError& e) {
        if (!silent)
            err << "regedit: " << e.message() << "\nNothing of " << path << " was imported.\n";
        return 1;
    }
    const ImportCounts counts = apply(statements, store, silent ? nullptr : &out);
    if (!silent) {
        out << "Imported " << path << ": " << counts.values << " values set";
        if (counts.deletedValues)
            out << ", " << counts.deletedValues << " values deleted";
        if (counts.deletedKeys)
            out << ", " << counts.deletedKeys << " keys deleted";
        out << " in " << store.location() << '\n';
    }
    return 0;
}

int exportFile(const QString& path, const std::optional<QString>& keyPath, RegistryStore& store,
               QTextStream& err) {
    std::optional<QString> section;
    if (keyPath) {
        section = sectionOfKeyPath(*keyPath);
        if (!section) {
            err << "regedit: " << *keyPath << " is not a Tarvo Micropause key\n";
            return 1;
        }
        // A key exists when it has values or keys below it, as "Scheme a" does for "Scheme a\b".
        const QString folded = section->toCaseFolded();
        const QStringList all = store.sections();
        const bool exists = section->isEmpty() || std::any_of(all.begin(), all.end(), [&](const QString& s) {
                                const QString f = s.toCaseFolded();
                                return f == folded || f.startsWith(folded + QLatin1Char('\\'));
                            });
        if (!exists) {
            err << "regedit: the key " << *keyPath << " does not exist\n";
            return 1;
        }
    }
    RegistryModel model;
    for (const QString& s : store.sections()) {
        model.ensureSection(s);
        for (const QString& k : store.keys(s))
            model.setValue(s, k, store.value(s, k).value_or(QString()));
    }
    QSaveFile file(path);
    const QByteArray bytes = serializeRegFile(model, section);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit()) {
        err << "regedit: cannot write " << path << ": " << file.errorString() << '\n';
        return 1;
    }
    return 0;
}

} // namespace

int runRegedit(const QStringList& arguments, RegistryStore& store, QTextStream& out, QTextStream& err) {
    bool silent = false;
    std::optional<QString> exportPath;
    std::optional<QString> exportKey;
    QStringList files;
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        const QString& arg = arguments[i];
        if (isSwitch(arg, QLatin1String("s"))) {
            silent = true;
        } else if (isSwitch(arg, QLatin1String("e"))) {
            if (i + 1 >= arguments.size()) {
                err << "regedit: /e needs the name of the file to write\n" << kUsage;
                return 2;
            }
            exportPath = arguments[++i];
            if (i + 1 < arguments.size())
                exportKey = arguments[++i];
            if (i + 1 < arguments.size()) {
                err << "regedit: too many arguments after /e\n" << kUsage;
                return 2;
            }
        } else if (isSwitch(arg, QLatin1String("?")) || arg == QLatin1String("--help")) {
            out << kUsage;
            return 0;
        } else if (arg.startsWith(QLatin1Char('/')) && arg.size() == 2) {
            err << "regedit: unknown switch " << arg << '\n' << kUsage;
            return 2;
        } else {
            files.append(arg);
        }
    }
    try {
        if (exportPath) {
            if (!files.isEmpty()) {
                err << "regedit: /e does not import files\n" << kUsage;
                return 2;
            }
            return exportFile(*exportPath, exportKey, store, err);
        }
        if (files.isEmpty()) {
            err << kUsage;
            return 2;
        }
        int status = 0;
        for (const QString& f : files)
            status = std::max(status, importFile(f, store, silent, out, err));
        return status;
    } catch (const StoreError& e) {
        if (!silent)
            err << "regedit: " << e.message() << '\n';
        return 1;
    }
}

} // namespace tarvo
