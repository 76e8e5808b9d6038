#pragma once

// The database tests' server and scratch databases. The server is the one
// the CTest fixture "postgres" started (pgserver.sh); every test makes its
// own databases on it, so tests can run in parallel.

#include <QSqlDatabase>
#include <QString>
#include <QStringList>

#include <string>

namespace testsupport {

// Where the fixture's server listens.
struct PostgresServer
{
    QString host; // the socket directory
    QString port;
    QString user;
};

// Reads the fixture's state file and points PGPORT at the server, since the
// code under test finds the port the way libpq does. False, with the
// reason in `problem`, when no server was started.
bool findPostgresServer(PostgresServer* server, std::string* problem);

// A database of its own for the running test, created empty and dropped
// with the object. `suffix` tells apart several of one test.
class ScratchDatabase
{
public:
    explicit ScratchDatabase(const QString& suffix = QString());
    ~ScratchDatabase();
    ScratchDatabase(const ScratchDatabase&) = delete;
    ScratchDatabase& operator=(const ScratchDatabase&) = delete;

    // Empty when the database is ready, else why it is not.
    const std::string& problem() const { return failure; }
    const PostgresServer& server() const { return postgres; }
    QString name() const { return databaseName; }

    // Runs one statement in the database outside the code under test:
    // setting tables up and reading them back. Empty text when it ran,
    // else the error.
    std::string exec(const QString& sql);
    // The first column of every row of a query; empty on failure.
    QStringList column(const QString& sql);

private:
    PostgresServer postgres;
    QString databaseName;
    QString adminConnection;
    QString ownConnection;
    std::string failure;
};

} // namespace testsupport
