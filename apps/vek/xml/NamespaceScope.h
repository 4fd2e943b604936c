#pragma once

#include <string>
#include <unordered_map>
#include <vector>

namespace tool
{

/// Which namespaces prefixes stand for while a tree is walked. All as UTF-8; the default namespace has no prefix.
class NamespaceScope
{
public:
    NamespaceScope();

    void Enter() { m_levels.push_back(m_declared.size()); }
    void Leave();
    /// Within the current level; false when the prefix stands for that anyway.
    bool Declare(std::string const & prefix, std::string const & name);
    /// Empty when it stands for none.
    std::string const & Find(std::string const & prefix) const;

private:
    std::unordered_map<std::string, std::vector<std::string>> m_names; // by prefix, those of outer levels first
    std::vector<std::string> m_declared;                               // prefixes
    std::vector<std::size_t> m_levels;                                 // where each one's begin
};

} // namespace tool
