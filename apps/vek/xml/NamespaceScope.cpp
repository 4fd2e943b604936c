#include "xml/NamespaceScope.h"

namespace tool
{

NamespaceScope::NamespaceScope()
{
    m_names["xml"].emplace_back("http://www.w3.org/XML/1998/namespace");
}

void NamespaceScope::Leave()
{
    for (; m_declared.size() > m_levels.back(); m_declared.pop_back())
        m_names[m_declared.back()].pop_back();
    m_levels.pop_back();
}

bool NamespaceScope::Declare(std::string const & prefix, std::string const & name)
{
    if (Find(prefix) == name)
        return false;
    m_names[prefix].push_back(name);
    m_declared.push_back(prefix);
    return true;
}

std::string const & NamespaceScope::Find(std::string const & prefix) const
{
    static std::string const NONE;
    auto const found = m_names.find(prefix);
    return found == m_names.end() || found->second.empty() ? NONE : found->second.back();
}

} // namespace tool
