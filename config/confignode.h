#pragma once

#include <QHash>
#include <QList>
#include <QString>

#include <memory>
#include <utility>
#include <vector>

namespace libconfig {

// One element of the configuration tree: a group, the file element, or the
// document root. Settings are kept as attributes in the order the file gave
// them, because writers put them back in that order (the toolkit's DOM lists
// attributes in an order that changes from one process to the next).
class ConfigNode
{
public:
    explicit ConfigNode(QString tagName = {});
    ~ConfigNode();

    ConfigNode(const ConfigNode&) = delete;
    ConfigNode& operator=(const ConfigNode&) = delete;

    const QString& tagName() const;

    const QList<std::pair<QString, QString>>& attributes() const;
    QString attribute(const QString& name) const;
    QString attribute(QStringView name) const;
    // A name set twice keeps its first position and takes the later value.
    void setAttribute(const QString& name, const QString& value);

    ConfigNode* appendChild(std::unique_ptr<ConfigNode> child);
    const std::vector<std::unique_ptr<ConfigNode>>& children() const;
    ConfigNode* firstChild() const;
    ConfigNode* parent() const;

private:
    // Position of the attribute of that name, or -1.
    qsizetype indexOf(const QString& name) const;
    qsizetype indexOf(QStringView name) const;
    qsizetype scanFor(QStringView name) const;

    QString m_tagName;
    QList<std::pair<QString, QString>> m_attributes;
    // A group may carry many settings; once it does, the index keeps a
    // repeated name from costing a scan of all earlier ones. Groups of a
    // usual size are scanned, which is cheaper than hashing every name.
    QHash<QString, qsizetype> m_attributeIndex;
    std::vector<std::unique_ptr<ConfigNode>> m_children;
    ConfigNode* m_parent = nullptr;
};

} // namespace libconfig
