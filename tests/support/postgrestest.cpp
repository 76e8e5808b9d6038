#include "postgrestest.h"

#include <QFile>
#include <QRegularExpression>
#include <QSqlError>
#include <QSqlQuery>

#include <gtest/gtest.h>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace testsupport {

bool findPostgresServer(PostgresServer* server, std::string* problem)
{
    QFile state(QStringLiteral(ZENTARO_PG_STATE));
    if (!state.open(QIODevice::ReadOnly)) {
        *problem = "no PostgreSQL server: " ZENTARO_PG_STATE " is missing (the CTest fixture 'postgres' starts "
                   "it; outside CTest run tests/support/pgserver.sh start " ZENTARO_PG_STATE ")";
        return false;
    }
    while (!state.atEnd()) {
        const QString line = QString::fromLocal8Bit(state.readLine()).trimmed();
        const QString name = line.section(u'=', 0, 0), value = line.section(u'=', 1);
        if (name == "PGHOST"_L1)
            server->host = value;
        else if (name == "PGPORT"_L1)
            server->port = value;
        else if (name == "PGUSER"_L1)
            server->user = value;
    }
    if (server->host.isEmpty() || server->port.isEmpty() || server->user.isEmpty()) {
        *problem = "no PostgreSQL server: " ZENTARO_PG_STATE " is incomplete";
        return false;
    }
    qputenv("PGPORT", server->port.toLocal8Bit());
    return true;
}

namespace {

// Database names are at most 63 characters of [a-z0-9_].
QString scratchName(const QString& suffix)
{
    const testing::TestInfo* test = testing::UnitTest::GetInstance()->current_test_info();
    QString name = test ? QString::fromStdString(std::string(test->test_suite_name()) + '_' + test->name())
                        : u"outside_a_test"_s;
    name = name.toLower().replace(QRegularExpression(u"[^a-z0-9_]"_s), u"_"_s);
    const QString unique = u'_' + QString::number(::getpid()) + (suffix.isEmpty() ? QString() : u'_' + suffix);
    return "zt_"_L1 + name.left(63 - 3 - unique.size()) + unique;
}

QSqlDatabase openConnection(const QString& connection, const PostgresServer& server, const QString& database)
{
    QSqlDatabase db = QSqlDatabase::addDatabase(u"QPSQL"_s, connection);
    db.setHostName(server.host);
    db.setPort(server.port.toInt());
    db.setUserName(server.user);
    db.setDatabaseName(database);
    db.open();
    return db;
}

std::string run(const QString& connection, const QString& sql)
{
    QSqlQuery query(QSqlDatabase::database(connection, false));
    return query.exec(sql) ? std::string() : query.lastError().text().toStdString();
}

} // namespace

ScratchDatabase::ScratchDatabase(const QString& suffix)
    : databaseName(scratchName(suffix)), adminConnection(u"scratch_admin_"_s + databaseName),
      ownConnection(u"scratch_"_s + databaseName)
{
    if (!findPostgresServer(&postgres, &failure))
        return;
    const QSqlDatabase admin = openConnection(adminConnection, postgres, u"postgres"_s);
    if (!admin.isOpen()) {
        failure = "cannot reach the PostgreSQL server: " + admin.lastError().text().toStdString();
        return;
    }
    // Quiet about the usual case of nothing to drop.
    (void)run(adminConnection, u"SET client_min_messages = warning"_s);
    failure = run(adminConnection, "DROP DATABASE IF EXISTS "_L1 + databaseName + " WITH (FORCE)"_L1);
    if (failure.empty())
        failure = run(adminConnection, "CREATE DATABASE "_L1 + databaseName);
    if (!failure.empty())
        return;
    const QSqlDatabase own = openConnection(ownConnection, postgres, databaseName);
    if (!own.isOpen())
        failure = "cannot open " + databaseName.toStdString() + ": " + own.lastError().text().toStdString();
}

ScratchDatabase::~ScratchDatabase()
{
    if (QSqlDatabase::contains(ownConnection)) {
        QSqlDatabase::database(ownConnection, false).close();
        QSqlDatabase::removeDatabase(ownConnection);
    }
    if (QSqlDatabase::contains(adminConnection)) {
        // FORCE ends the connections the code under test left open.
        (void)run(adminConnection, "DROP DATABASE IF EXISTS "_L1 + databaseName + " WITH (FORCE)"_L1);
        QSqlDatabase::database(adminConnection, false).close();
        QSqlDatabase::removeDatabase(adminConnection);
    }
}

std::string ScratchDatabase::exec(const QString& sql)
{
    return run(ownConnection, sql);
}

QStringList ScratchDatabase::column(const QString& sql)
{
    QSqlQuery query(QSqlDatabase::database(ownConnection, false));
    QStringList values;
    if (query.exec(sql)) {
        while (query.next())
            values.append(query.value(0).toString());
    }
    return values;
}

} // namespace testsupport
