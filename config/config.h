#pragma once

#include "cfgreader.h"
#include "confignode.h"

#include <QByteArray>
#include <QString>
#include <QStringView>

#include <memory>

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
};

} // namespace libconfig
