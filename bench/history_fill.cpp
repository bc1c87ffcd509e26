// The history benchmark's file, made apart from the benchmark so that the benchmark, like the program,
// links no Qt SQL and pays for loading it: a year of events written into the history file at <file>
// (which has its layout already), then SQLite's plans for the status window's reading and for the
// pruning.
//   history_fill <file>
#include <QCoreApplication>
#include <QDateTime>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTextStream>
#include <QVariant>

namespace {

QSqlDatabase connect(const QString& name, const QString& path) {
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
    db.setDatabaseName(path);
    db.open();
    return db;
}

constexpr int kEvents = 250000;

// A year of days from 8:00, an event every 52 seconds: mostly micropauses, some ended early, natural
// pauses, prompts and exercise breaks, one start and one shut-down a day.
void fill(const QString& path, const QDateTime& now) {
    {
        QSqlDatabase db = connect(QStringLiteral("fill"), path);
        db.transaction();
        QSqlQuery q(db);
        q.prepare(QStringLiteral("INSERT INTO events (at, utc_offset, kind, outcome, seconds, details)"
                                 " VALUES (?, ?, ?, ?, ?, ?)"));
        const int perDay = kEvents / 365 + 1;
        for (int i = 0; i < kEvents; ++i) {
            const int day = i / perDay, n = i % perDay;
            const QDateTime at = QDateTime(now.date().addDays(day - 364), QTime(8, 0)).addSecs(n * 52);
            const char* kind = n == 0            ? "start"
                               : n == perDay - 1 ? "shut down"
                               : n % 50 == 0     ? "exercise break"
                               : n % 25 == 0     ? "exercise prompt"
                                                 : "micropause";
            const char* outcome = n % 7 == 0 ? "ended early" : n % 5 == 0 ? "credited" : "completed";
            q.addBindValue(at.toMSecsSinceEpoch());
            q.addBindValue(at.offsetFromUtc());
            q.addBindValue(QString::fromLatin1(kind));
            q.addBindValue(QString::fromLatin1(outcome));
            q.addBindValue(15);
            q.addBindValue(QStringLiteral("scheduled"));
            q.exec();
        }
        db.commit();
    }
    QSqlDatabase::removeDatabase(QStringLiteral("fill"));
}

void printPlan(QTextStream& out, const QString& path, const QString& sql) {
    {
        QSqlQuery q(connect(QStringLiteral("plan"), path));
        q.exec(QStringLiteral("EXPLAIN QUERY PLAN ") + sql);
        out << "plan of " << sql << ":\n";
        while (q.next())
            out << "    " << q.value(3).toString() << '\n';
    }
    QSqlDatabase::removeDatabase(QStringLiteral("plan"));
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    if (argc != 2)
        return 2;
    const QString path = QString::fromLocal8Bit(argv[1]);
    fill(path, QDateTime::currentDateTime());
    QTextStream out(stdout);
    out << "events in the file: " << kEvents << '\n';
    printPlan(
        out, path,
        QStringLiteral(
            "SELECT at, utc_offset, kind, outcome, seconds, details FROM events WHERE at >= 0 ORDER BY at"));
    printPlan(out, path, QStringLiteral("DELETE FROM events WHERE at < 0"));
    return 0;
}
