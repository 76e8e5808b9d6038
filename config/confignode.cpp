#include "confignode.h"

#include "emptytext.h"

namespace libconfig {

ConfigNode::ConfigNode(QString tagName)
    : m_tagName(std::move(tagName))
{
}

ConfigNode::~ConfigNode()
{
    // The depth of the tree is whatever the file nests, so the default
    // member-wise destruction could recurse as deep as a hostile file likes.
    // Detach the descendants into a flat list first; each node destroyed from
    // it then has no children left.
    std::vector<std::unique_ptr<ConfigNode>> pending = std::move(m_children);
    while (!pending.empty()) {
        std::unique_ptr<ConfigNode> node = std::move(pending.back());
        pending.pop_back();
        for (auto& child : node->m_children)
            pending.push_back(std::move(child));
        node->m_children.clear();
    }
}

const QString& ConfigNode::tagName() const
{
    return m_tagName;
}

const QList<std::pair<QString, QString>>& ConfigNode::attributes() const
{
    return m_attributes;
}

namespace {

// Up to this many attributes a group is searched by a scan; the index is
// built when the group grows past it.
constexpr qsizetype scannedAttributes = 32;

} // namespace

qsizetype ConfigNode::indexOf(const QString& name) const
{
    if (m_attributes.size() > scannedAttributes) {
        const auto found = m_attributeIndex.constFind(name);
        return found == m_attributeIndex.cend() ? -1 : found.value();
    }
    return scanFor(name);
}

qsizetype ConfigNode::indexOf(QStringView name) const
{
    if (m_attributes.size() > scannedAttributes)
        return indexOf(name.toString());
    return scanFor(name);
}

qsizetype ConfigNode::scanFor(QStringView name) const
{
    for (qsizetype i = 0; i < m_attributes.size(); ++i) {
        const QString& candidate = m_attributes.at(i).first;
        // The length test first: most names differ in it, and it spares the call.
        if (candidate.size() == name.size() && QStringView(candidate) == name)
            return i;
    }
    return -1;
}

QString ConfigNode::attribute(const QString& name) const
{
    const qsizetype at = indexOf(name);
    if (at < 0)
        return emptyText();
    return m_attributes.at(at).second;
}

QString ConfigNode::attribute(QStringView name) const
{
    const qsizetype at = indexOf(name);
    if (at < 0)
        return emptyText();
    return m_attributes.at(at).second;
}

void ConfigNode::setAttribute(const QString& name, const QString& value)
{
    const qsizetype at = indexOf(name);
    if (at >= 0) {
        m_attributes[at].second = value;
        return;
    }
    m_attributes.append({name, value});
    if (m_attributes.size() == scannedAttributes + 1) {
        m_attributeIndex.reserve(2 * m_attributes.size());
        for (qsizetype i = 0; i < m_attributes.size(); ++i)
            m_attributeIndex.insert(m_attributes.at(i).first, i);
    } else if (m_attributes.size() > scannedAttributes + 1) {
        m_attributeIndex.insert(name, m_attributes.size() - 1);
    }
}

ConfigNode* ConfigNode::appendChild(std::unique_ptr<ConfigNode> child)
{
    ConfigNode* raw = child.get();
    raw->m_parent = this;
    m_children.push_back(std::move(child));
    return raw;
}

const std::vector<std::unique_ptr<ConfigNode>>& ConfigNode::children() const
{
    return m_children;
}

ConfigNode* ConfigNode::firstChild() const
{
    return m_children.empty() ? nullptr : m_children.front().get();
}

ConfigNode* ConfigNode::parent() const
{
    return m_parent;
}

} // namespace libconfig
