#include "confignode.h"

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

bool ConfigNode::hasAttribute(const QString& name) const
{
    return m_attributeIndex.contains(name);
}

QString ConfigNode::attribute(const QString& name) const
{
    const auto found = m_attributeIndex.constFind(name);
    if (found == m_attributeIndex.cend())
        return QStringLiteral("");
    return m_attributes.at(found.value()).second;
}

void ConfigNode::setAttribute(const QString& name, const QString& value)
{
    const auto found = m_attributeIndex.constFind(name);
    if (found != m_attributeIndex.cend()) {
        m_attributes[found.value()].second = value;
        return;
    }
    m_attributeIndex.insert(name, m_attributes.size());
    m_attributes.append({name, value});
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
