#ifndef LIBCONFIG_CONFIG_H
#define LIBCONFIG_CONFIG_H

#include "confignode.h"

#include <QString>
#include <QStringList>
#include <QStringView>

#include <memory>
#include <string>

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
    // The "cfg" reader's input: the whole file is read when it is opened,
    // and the reader keeps its place in it. Closing releases the bytes.
    struct ByteStream {
        std::string bytes;
        std::size_t position = 0;
    };
    ByteStream stream;
    std::unique_ptr<ConfigNode> documentRoot;

private:
    QString lookupFields(const ConfigNode* start, const QStringView* fields, qsizetype count) const;
};

} // namespace libconfig

#endif
