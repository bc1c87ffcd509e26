// The registry export format: escapes, typed values, deletions, the shapes of files from Windows in
// every encoding, and errors that name the line. The round trip of what the store writes is checked
// through the real regedit.
#include "core/RegFileCodec.h"

#include <QtTest>

using namespace tarvo;

namespace {

const QString kKey = "HKEY_CURRENT_USER\\Software\\VB and VBA Program Settings\\Tarvo Micropause";

// The statements in short ("+key", "-key", "key:name=text", "key:name-" deleted, "key:name?line"
// skipped, keys named by their section below our root), or the line a refused file fails on.
QString summary(const QByteArray& bytes) {
    try {
        QStringList out;
        for (const RegStatement& st : parseRegFile(bytes, "f.reg")) {
            const QString key = sectionOfKeyPath(st.keyPath).value_or("?" + st.keyPath);
            const QString value = key + ":" + st.name;
            out << (st.kind == RegStatement::Kind::CreateKey     ? "+" + key
                    : st.kind == RegStatement::Kind::DeleteKey   ? "-" + key
                    : st.kind == RegStatement::Kind::SetValue    ? value + "=" + st.text
                    : st.kind == RegStatement::Kind::DeleteValue ? value + "-"
                                                                 : value + "?" + QString::number(st.line));
        }
        return out.join(' ');
    } catch (const RegParseError& e) {
        return QString("line %1").arg(e.line());
    }
}

} // namespace

class TestRegFileCodec : public QObject {
    Q_OBJECT

private slots:
    void escapesTypedValuesAndForeignKeys() {
        const QString file =
            "REGEDIT4\n; a comment line\n[-ROOT\\Old]\n\"ignored\"=\"below a deleted key\"\n"
            "[HKEY_LOCAL_MACHINE\\Software\\Other]\n\"x\"=\"y\"\n[ROOT Extra\\O]\n[ROOT]\n"
            "[HKEY_CURRENT_USER\\SOFTWARE\\VB AND VBA PROGRAM SETTINGS\\TARVO MICROPAUSE\\S\\b [x]]\n"
            "\"q\\\"uote\"=\"C:\\\\media\\\\a.avi \\\"x\\\"\" ; a comment\n\"lines\"=\"one\\ntwo\\r\"\n"
            "\"odd\"=\"keep \\t as is\"\n\"spaced\" = \"v\"\n"
            "\"hexsz\"=hex(1):41,42,\\ ; split\n; between the parts\n  43,\\;x\n  00 ; the end\n"
            "\"num\"=dword:0000000f ; fifteen\n\"gone\"=-\n@=\"default\"\n";
        QCOMPARE(
            summary(QString(file).replace("ROOT", kKey).toUtf8()),
            "-Old +?HKEY_LOCAL_MACHINE\\Software\\Other ?HKEY_LOCAL_MACHINE\\Software\\Other:x=y +?" + kKey +
                " Extra\\O + +S\\b [x] S\\b [x]:q\"uote=C:\\media\\a.avi \"x\" S\\b [x]:lines=one\ntwo\r "
                "S\\b [x]:odd=keep \\t as is S\\b [x]:spaced=v S\\b [x]:hexsz=ABC S\\b [x]:num?18 "
                "S\\b [x]:gone- S\\b [x]:?20");
    }

    // Shapes that files written or hand-edited on Windows have, each read as REGEDIT4 in UTF-8 and in
    // Latin-1 and as a version 5 file in UTF-16, with LF, CRLF and CR line ends.
    void windowsFileShapesInEveryEncoding() {
        const struct {
            const char* body; // after the header line; ROOT is our key
            const char* statements;
        } rows[] = {
            {"[ROOT\\Options]\n\"b\"=hex:01,02,\\ ; after\n\n  ; part two\n#\n  03 ; end\n\"a\"=\"ä\"\n",
             "+Options Options:b?3 Options:a=ä"},
            {"[ROOT\\Options]\n\"b\"=hex:01,\\\n\"a\"=\"ä\"\n\"c\"=hex(2):41,00,\\",
             "+Options Options:b?3 Options:a=ä Options:c?5"},
            {"# exported\n[ROOT\\Options\\]\n#note\n\"a\"=\"ä\"\n[-ROOT\\Old\\]\n",
             "+Options Options:a=ä -Old"},
            {"[ROOT\\Options]\n\"\"=\"x\"\n@=\"y\"\n\"\"=-\n\"a\"=\"ä\"\n",
             "+Options Options:?3 Options:?4 Options:?5 Options:a=ä"},
            {"[ROOT\\Options]\n\"b\"=hex:01,\\\n\n 02\n\"a\"=\"ä\"\n\"open=1\n", "line 7"},
        };
        for (const auto& row : rows) {
            for (const QString eol : {"\n", "\r\n", "\r"}) {
                const QString body = QString::fromUtf8(row.body).replace("ROOT", kKey).replace("\n", eol);
                const QByteArray files[] = {
                    ("REGEDIT4" + eol + body).toUtf8(), ("REGEDIT4" + eol + body).toLatin1(),
                    QStringEncoder(QStringEncoder::Utf16LE, QStringEncoder::Flag::WriteBom)
                        .encode("Windows Registry Editor Version 5.00" + eol + body)};
                const QString shown = eol.toLatin1().toHex() + ": "; // the line ends
                for (const QByteArray& file : files)
                    QCOMPARE(shown + summary(file), shown + QString::fromUtf8(row.statements));
            }
        }
    }

    // UTF-16 files may hold halves of surrogate pairs, which UTF-8 cannot: they read as U+FFFD, as the
    // store writes them back, so that a setting reads the same after the store wrote it.
    void unpairedSurrogatesReadAsWrittenBack() {
        const QString text = "Windows Registry Editor Version 5.00\r\n[" + kKey + "\\O" + QChar(0xD9D9) +
                             "]\r\n\"a\"=\"" + QChar(0xDC00) +
                             "x\U0001F600\"\r\n\"b\"=hex(1):00,d8,41,00,00,00\r\n";
        const QByteArray file =
            "\xFF\xFE" + QByteArray(reinterpret_cast<const char*>(text.utf16()), text.size() * 2);
        QCOMPARE(summary(file), "+O\uFFFD O\uFFFD:a=\uFFFDx\U0001F600 O\uFFFD:b=\uFFFDA");
    }

    void errorsNameTheLine() {
        QCOMPARE(summary("Hello\n"), "line 1");
        QCOMPARE(summary("\n\nREGEDIT5\n"), "line 3");
        QCOMPARE(summary(""), "line 1");
        const QByteArray head = QStringLiteral("REGEDIT4\n\n[%1\\Options]\n").arg(kKey).toUtf8();
        QCOMPARE(summary(head + "\"tray\"=\"0\n"), "line 4"); // unterminated value
        QCOMPARE(summary(head + "\"tray=\"0\"\n"), "line 4"); // name not closed where it should
        QCOMPARE(summary(head + "\"a\"=\"1\"\n[" + kKey.toUtf8() + "\n"), "line 5"); // truncated header
        QCOMPARE(summary(head + "\"a\"=\"1\" junk\n"), "line 4");
        QCOMPARE(summary(head + "\"a\"=hex:zz\n"), "line 4");
        QCOMPARE(summary(head + "\"a\"=qword:1\n"), "line 4");
        QCOMPARE(summary(head + "just text\n"), "line 4");
        QCOMPARE(summary("REGEDIT4\n\"a\"=\"1\"\n"), "line 2"); // value before any key
        // The message shows the file's name as it is, whatever it holds.
        try {
            parseRegFile("Hello\n", "100%2 %1.reg");
            QFAIL("a file without its header was read");
        } catch (const RegParseError& e) {
            QCOMPARE(e.message(), "100%2 %1.reg, line 1: " + e.reason());
            QVERIFY(QString(e.what()).startsWith("100%2 %1.reg:1: "));
        }
    }
};

QTEST_GUILESS_MAIN(TestRegFileCodec)
#include "tst_regfilecodec.moc"
