// The registry export format: escapes, deletions and errors that name the line. Reading Latin-1 and
// UTF-16 files, and the round trip of what the store writes, are checked through the real regedit.
#include "core/RegFileCodec.h"
#include "support/Raised.h"

#include <QtTest>

using namespace tarvo;

namespace {

const QString kKey = "HKEY_CURRENT_USER\\Software\\VB and VBA Program Settings\\Tarvo Micropause";

int errorLine(const QByteArray& bytes) {
    const auto e = raised<RegParseError>([&] { parseRegFile(bytes, "f.reg"); });
    return e ? e->line() : 0;
}

} // namespace

class TestRegFileCodec : public QObject {
    Q_OBJECT

private slots:
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
        const auto st = parseRegFile(file, "f.reg");
        QCOMPARE(st.size(), size_t(9));
        QCOMPARE(*sectionOfKeyPath(st[0].keyPath), "Scheme a\\b [x]");
        QCOMPARE(st[1].name, "q\"uote");
        QCOMPARE(st[1].text, "C:\\media\\a.avi \"x\"");
        QCOMPARE(st[2].text, "one\ntwo\r");
        QCOMPARE(st[3].text, "keep \\t as is");
        QCOMPARE(st[4].text, "v");
        QCOMPARE(st[5].kind, RegStatement::Kind::SetValue);
        QCOMPARE(st[5].text, "ABC");
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
        const auto st = parseRegFile(file, "f.reg");
        QCOMPARE(st.size(), size_t(4));
        QCOMPARE(st[0].kind, RegStatement::Kind::DeleteKey);
        QCOMPARE(*sectionOfKeyPath(st[0].keyPath), "Scheme old");
        QVERIFY(!sectionOfKeyPath(st[1].keyPath));
        QVERIFY(!sectionOfKeyPath(kKey + " Extra\\Options"));
        QCOMPARE(*sectionOfKeyPath(st[3].keyPath), QString());
        QCOMPARE(*sectionOfKeyPath(kKey.toUpper() + "\\Options"), "Options");
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
    }
};

QTEST_GUILESS_MAIN(TestRegFileCodec)
#include "tst_regfilecodec.moc"
