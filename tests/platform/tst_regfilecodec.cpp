// The registry export format: both file versions and encodings, escapes, deletions, and errors that
// name the line.
#include "RegFileCodec.h"

#include <QStringEncoder>
#include <QtTest>

using namespace tarvo;

namespace {

const QString kKey =
    QStringLiteral("HKEY_CURRENT_USER\\Software\\VB and VBA Program Settings\\Tarvo Micropause");

// Applies parsed statements below the root to a model, as the store does.
RegistryModel modelOf(const std::vector<RegStatement>& statements) {
    RegistryModel m;
    for (const RegStatement& st : statements) {
        const auto section = sectionOfKeyPath(st.keyPath);
        if (!section)
            continue;
        if (st.kind == RegStatement::Kind::CreateKey)
            m.ensureSection(*section);
        else if (st.kind == RegStatement::Kind::SetValue)
            m.setValue(*section, st.name, st.text);
    }
    return m;
}

int errorLine(const QByteArray& bytes) {
    try {
        parseRegFile(bytes, QStringLiteral("f.reg"));
    } catch (const RegParseError& e) {
        return e.line();
    }
    return 0;
}

} // namespace

class TestRegFileCodec : public QObject {
    Q_OBJECT

private slots:
    void readsBothVersionsAndEncodings() {
        const QString body =
            QStringLiteral("\r\n[%1\\Micropause]\r\n\"Warning\"=\"Schöne Pause\"\r\n").arg(kKey);
        const QString v4 = QStringLiteral("REGEDIT4") + body;
        const QString v5 = QStringLiteral("Windows Registry Editor Version 5.00") + body;

        QStringEncoder utf16(QStringEncoder::Utf16LE, QStringEncoder::Flag::WriteBom);
        const QList<QByteArray> files{v4.toUtf8(), v4.toLatin1(), QByteArray(utf16.encode(v5))};
        for (const QByteArray& bytes : files) {
            const RegistryModel m = modelOf(parseRegFile(bytes, QStringLiteral("f.reg")));
            QCOMPARE(m.value(QStringLiteral("micropause"), QStringLiteral("WARNING")),
                     std::optional<QString>(QStringLiteral("Schöne Pause")));
        }
    }

    void escapesAndTypedValues() {
        const QByteArray file = QStringLiteral("REGEDIT4\n"
                                               "; a comment line\n"
                                               "[%1\\Scheme a\\b [x]]\n"
                                               "\"q\\\"uote\"=\"C:\\\\media\\\\a.avi \\\"x\\\"\"\n"
                                               "\"lines\"=\"one\\ntwo\\r\"\n"
                                               "\"odd\"=\"keep \\t as is\"\n"
                                               "\"spaced\" = \"v\"\n"
                                               "\"hexsz\"=hex(1):41,42,\\\n"
                                               "  43,00\n"
                                               "\"num\"=dword:0000000f\n"
                                               "\"gone\"=-\n"
                                               "@=\"default\"\n")
                                    .arg(kKey)
                                    .toUtf8();
        const auto st = parseRegFile(file, QStringLiteral("f.reg"));
        QCOMPARE(st.size(), size_t(9));
        QCOMPARE(*sectionOfKeyPath(st[0].keyPath), QStringLiteral("Scheme a\\b [x]"));
        QCOMPARE(st[1].name, QStringLiteral("q\"uote"));
        QCOMPARE(st[1].text, QStringLiteral("C:\\media\\a.avi \"x\""));
        QCOMPARE(st[2].text, QStringLiteral("one\ntwo\r"));
        QCOMPARE(st[3].text, QStringLiteral("keep \\t as is"));
        QCOMPARE(st[4].text, QStringLiteral("v"));
        QCOMPARE(st[5].kind, RegStatement::Kind::SetValue);
        QCOMPARE(st[5].text, QStringLiteral("ABC"));
        QCOMPARE(st[6].kind, RegStatement::Kind::Unsupported);
        QCOMPARE(st[7].kind, RegStatement::Kind::DeleteValue);
        QCOMPARE(st[7].line, 11);
        QCOMPARE(st[8].kind, RegStatement::Kind::Unsupported);
    }

    void deletionsAndForeignKeys() {
        const QByteArray file =
            QStringLiteral("REGEDIT4\n[-%1\\Scheme old]\n\"ignored\"=\"below a deleted key\"\n"
                           "[HKEY_LOCAL_MACHINE\\Software\\Other]\n\"x\"=\"y\"\n[%1]\n")
                .arg(kKey)
                .toUtf8();
        const auto st = parseRegFile(file, QStringLiteral("f.reg"));
        QCOMPARE(st.size(), size_t(4));
        QCOMPARE(st[0].kind, RegStatement::Kind::DeleteKey);
        QCOMPARE(*sectionOfKeyPath(st[0].keyPath), QStringLiteral("Scheme old"));
        QVERIFY(!sectionOfKeyPath(st[1].keyPath));
        QVERIFY(!sectionOfKeyPath(kKey + QStringLiteral(" Extra\\Options")));
        QCOMPARE(*sectionOfKeyPath(st[3].keyPath), QString());
        QCOMPARE(*sectionOfKeyPath(kKey.toUpper() + QStringLiteral("\\Options")), QStringLiteral("Options"));
    }

    void errorsNameTheLine() {
        QCOMPARE(errorLine("Hello\n"), 1);
        QCOMPARE(errorLine("\n\nREGEDIT5\n"), 3);
        QCOMPARE(errorLine(""), 1);
        const QByteArray head = QStringLiteral("REGEDIT4\n\n[%1\\Options]\n").arg(kKey).toUtf8();
        QCOMPARE(errorLine(head + "\"tray\"=\"0\n"), 4); // unterminated value
        QCOMPARE(errorLine(head + "\"tray=\"0\"\n"), 4); // name not closed where it should
        QCOMPARE(errorLine(head + "\"a\"=\"1\"\n[" + kKey.toUtf8() + "\n"), 5); // truncated header
        QCOMPARE(errorLine(head + "\"a\"=\"1\" junk\n"), 4);
        QCOMPARE(errorLine(head + "\"a\"=hex:zz\n"), 4);
        QCOMPARE(errorLine(head + "\"a\"=qword:1\n"), 4);
        QCOMPARE(errorLine(head + "just text\n"), 4);
        QCOMPARE(errorLine("REGEDIT4\n\"a\"=\"1\"\n"), 2); // value before any key
        try {
            parseRegFile(head + "\"a\"=\"1", QStringLiteral("/x/registry.reg"));
            QFAIL("no error");
        } catch (const RegParseError& e) {
            QVERIFY(e.message().contains(QStringLiteral("/x/registry.reg, line 4")));
        }
    }

    void serializeRoundTrip() {
        RegistryModel m;
        m.setValue(QStringLiteral("Micropause"), QStringLiteral("Warning"),
                   QStringLiteral("Hands off Keyboard && Mouse, \"look\" away \\ relax.\nTwo"));
        m.ensureSection(QStringLiteral("Empty"));
        m.setValue(QStringLiteral("Scheme \"ä\" \\ [b]"), QStringLiteral("1d"), QStringLiteral("Ünïcode ✓"));
        m.setValue(QStringLiteral("Options"), QStringLiteral("tray"), QString());
        const QByteArray bytes = serializeRegFile(m);
        QVERIFY(bytes.startsWith("REGEDIT4\n\n["));
        QVERIFY(modelOf(parseRegFile(bytes, QStringLiteral("f.reg"))) == m);

        const RegistryModel only = modelOf(parseRegFile(serializeRegFile(m, QStringLiteral("options")), {}));
        QCOMPARE(only.sections(), QStringList{QStringLiteral("Options")});
    }
};

QTEST_GUILESS_MAIN(TestRegFileCodec)
#include "tst_regfilecodec.moc"
