#pragma once

#include "cfgreader.h"
#include "confignode.h"

#include <QByteArray>
#include <QString>
#include <QStringView>

#include <memory>

class QTextStream;
// The tree views are defined in the configview library, which links
// QtWidgets; the store itself needs only QtCore.
class QTreeWidget;
class QTreeWidgetItem;

namespace libconfig {

// The configuration store: reads a "cfg" (block-structured text) or "xml"
// file into a tree of ConfigNode and answers dotted-key lookups such as
// "zentaro.logger.level". A key that is not there gives an empty text.
class Config
{
public:
    Config();
    Config(const QString& fileName, const QString& fileType);
    virtual ~Config();

    Config(const Config&) = delete;
    Config& operator=(const Config&) = delete;

    void readFile(const QString& fileName, const QString& fileType);
    void constructor(const QString& fileName, const QString& fileType);
    // Reads configuration text held in memory exactly as readFile reads a
    // file of that name and format.
    void readData(const QByteArray& bytes, const QString& fileType, const QString& fileName = {});

    bool openFile();
    bool openFile(const QString& name);
    void closeFile();

    void loadFile();
    void loadXmlFile();
    bool jump(char c);

    QString lookup(const QString& key) const;
    QString lookup(const ConfigNode* node, const QString& key) const;

    // The root: its children are the top-level elements (the file element).
    // Null before anything was loaded.
    const ConfigNode* document() const;
    // After reading "xml" text that loaded nothing: the line where a piece
    // of markup went over the reader's size limit; -1 when that was not why,
    // or when the text loaded.
    qint64 oversizedMarkupLine() const { return oversizedLine; }

    // Writers. A file form writes the file `name` (fileName when `name` is
    // empty) and answers false, after one diagnostic line, when the file
    // cannot be written; what stood there before is then left as it was.
    // Only the first group under the file element is written. "cfg" text is
    // ISO 8859-1, byte for byte what the reader reads; XML is UTF-8.
    bool buildConfigFile(const QString& name = {}) const;
    void buildConfigFile(const ConfigNode* node, QTextStream& ts) const;
    // The bytes buildConfigFile() writes to a file.
    QByteArray cfgText() const;
    bool buildConfigXmlFile(const QString& name = {}) const;
    void buildConfigXmlFile(const ConfigNode* node, QTextStream& ts) const;
    // The tree on standard output, for inspection: "Tree ", then each
    // element's name and its "name = value" lines, without indentation.
    void printConfigTree() const;
    void printConfigTree(const ConfigNode* node) const;

    // Tree views (configview library). A view has the one column
    // "ConfigurationFile": an element is an item showing its name, a setting
    // an item showing "name = value"; the caller owns a view it is given.
    QTreeWidget* buildConfigListView() const;
    QTreeWidget* newConfigListView() const;
    void buildConfigListView(const ConfigNode* node, QTreeWidget* view) const;
    void buildConfigListView(const ConfigNode* node, QTreeWidgetItem* parent) const;
    // Replaces the tree with what the view shows and saves it in the file's
    // own format over fileName; true when the file was written.
    bool loadListView(const QTreeWidget* view);
    // Replaces the tree with what the view shows, without saving it.
    void takeListView(const QTreeWidget* view);
    // Appends the element that `item` shows, with everything under it,
    // below `parent` (the document root for a top-level item).
    void loadListView(const QTreeWidgetItem* item, ConfigNode* parent) const;

protected:
    QString fileName;
    QString fileType;
    CfgStream stream;
    std::unique_ptr<ConfigNode> documentRoot;

private:
    void startDocument(const QString& fileName, const QString& fileType);
    void readCfgStream();
    void readXml(const QByteArray& bytes);
    QString lookupFields(const ConfigNode* start, const QStringView* fields, qsizetype count) const;

    qint64 oversizedLine = -1;
};

} // namespace libconfig
