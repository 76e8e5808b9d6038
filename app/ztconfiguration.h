#pragma once

#include "config.h"

#include <QByteArray>
#include <QString>

#include <memory>

class QTreeWidget;

// The application configuration. The print run and the suite's tools reach
// the user's own file, $HOME/.zentaro/conf/zentaro.conf, through
// SyncSingleton<ZTConfiguration>; a tool or a test that works on another
// file constructs one on that file and hands it to whatever reads settings.
class ZTConfiguration : public libconfig::Config
{
public:
    // The user's file, in the "cfg" format.
    ZTConfiguration();
    // The file at `path`, in the format `fileType` ("cfg" or "xml").
    explicit ZTConfiguration(const QString& path, const QString& fileType = QStringLiteral("cfg"));
    // Configuration text held in memory, read as a file of that format.
    static std::unique_ptr<ZTConfiguration> fromText(const QByteArray& text,
                                                     const QString& fileType = QStringLiteral("cfg"));

    // Where the user's file is: the home folder + "/.zentaro/conf/zentaro.conf".
    static QString userFilePath();

    // The text of a dotted key such as "zentaro.logger.level"; empty when
    // the key is not set.
    QString getStrValue(const QString& key) const;

    // An editable tree view of the configuration, as Config's of the same
    // name; defined in the configview library, which links QtWidgets.
    QTreeWidget* newConfigListView() const;

private:
    struct Unloaded {};
    explicit ZTConfiguration(Unloaded);
};
