#pragma once

#include <string>

namespace tool
{

/// The new file beside the one that it becomes; gone again unless it took that one's place.
class NewFile
{
public:
    explicit NewFile(std::wstring const & target);
    ~NewFile();
    NewFile(NewFile const &) = delete;
    NewFile & operator=(NewFile const &) = delete;

    std::wstring const & Path() const { return m_path; }
    /// Takes the place; false, after telling the user why, when that fails.
    bool Place();

private:
    std::wstring m_target;
    std::wstring m_path;
    bool m_placed = false;
};

/// Whether the path can be written to, as far as that can be told beforehand; the user is told why not.
bool IsWritable(std::wstring const & path);

} // namespace tool
