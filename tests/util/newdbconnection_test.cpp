#include "hlibrary.h"
#include "postgrestest.h"
#include "ztconfiguration.h"

#include <QSqlDatabase>
#include <QSqlQuery>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

std::unique_ptr<ZTConfiguration> databaseSettings(const testsupport::ScratchDatabase& database,
                                                  const QString& dbname)
{
    return ZTConfiguration::fromText("zentaro : { db : { dbname = \"" + dbname.toUtf8() + "\"; username = \""
                                     + database.server().user.toUtf8() + "\"; password = \"\"; hostname = \""
                                     + database.server().host.toUtf8() + "\"; }; };\n");
}

// The suite's way to a database: the settings, the port from PGPORT, and
// the DatabaseManager singleton, whose log manager has no default Logger.
TEST(NewDBConnection, OpensTheConfiguredDatabase)
{
    testsupport::ScratchDatabase scratch;
    ASSERT_EQ(scratch.problem(), "");
    const auto configuration = databaseSettings(scratch, scratch.name());

    QSqlDatabase* db = HLibrary::newDBConnection(u"till"_s, configuration.get());
    ASSERT_NE(db, nullptr);
    EXPECT_EQ(db->connectionName(), u"till"_s);
    EXPECT_EQ(db->driverName(), u"QPSQL"_s);
    QSqlQuery query(*db);
    ASSERT_TRUE(query.exec(u"select current_database()"_s));
    ASSERT_TRUE(query.next());
    EXPECT_EQ(query.value(0).toString(), scratch.name());

    EXPECT_EQ(HLibrary::newDBConnection(u"till"_s, configuration.get()), db);

    const auto wrong = databaseSettings(scratch, u"zt_no_such_database"_s);
    EXPECT_EQ(HLibrary::newDBConnection(u"wrong"_s, wrong.get()), nullptr);
    // The default connection, still open when the process ends.
    EXPECT_NE(HLibrary::newDBConnection(QString(), configuration.get()), nullptr);
}

} // namespace
