#include "VekEdit.h"
#include "VekLib.h"

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

namespace
{

/// A new file beside the one that it is to replace; gone again unless it took that one's place.
class FileBeside
{
public:
    explicit FileBeside(wchar_t const * target) noexcept : m_target(target)
    {
        constexpr unsigned int TRIES = 100;
        for (unsigned int i = 0; i < TRIES && m_path.IsEmpty(); ++i)
            Create(i);
    }
    FileBeside(FileBeside const &) = delete;
    FileBeside & operator=(FileBeside const &) = delete;
    ~FileBeside()
    {
        if (!m_path.IsEmpty())
            DeleteFileW(m_path);
    }

    /// Empty when there is none.
    CVekString<wchar_t> const & Path() const noexcept { return m_path; }
    bool Flush() const noexcept
    {
        HANDLE const file = CreateFileW(m_path, GENERIC_WRITE, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
        if (file == INVALID_HANDLE_VALUE)
            return false;
        bool const isFlushed = FlushFileBuffers(file) != 0;
        CloseHandle(file);
        return isFlushed;
    }
    bool Place() noexcept
    {
        if (!MoveFileExW(m_path, m_target, MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH))
            return false;
        m_path.Assign(L"");
        return true;
    }

private:
    void Create(unsigned int number) noexcept
    {
        CVekString<wchar_t> path(m_target);
        int const length = path.GetLength();
        path.AppendFormat(L".%u-%u.new", static_cast<unsigned int>(GetCurrentProcessId()), number);
        if (length == 0 || path.GetLength() <= length)
            return;
        HANDLE const file = CreateFileW(path, GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
        if (file == INVALID_HANDLE_VALUE)
            return;
        CloseHandle(file);
        m_path.Swap(path);
    }

    wchar_t const * m_target;
    CVekString<wchar_t> m_path;
};

/// Not every system refuses to replace a file that is read-only.
bool IsReplaceable(wchar_t const * path) noexcept
{
    DWORD const attributes = GetFileAttributesW(path);
    return attributes == INVALID_FILE_ATTRIBUTES ||
           (attributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_READONLY)) == 0;
}

bool ReadsBack(wchar_t const * path, IVekXMLManager & manager, IVekXMLParser * parser,
               IVekXMLElement const * root) noexcept
{
    CVekRef<IVekXMLDocument> const document(manager.CreateXMLDocument());
    CVekRef<IVekXMLParser> const own(parser ? nullptr : manager.CreateXMLParser());
    IVekXMLParser * const reader = parser ? parser : own.Get();
    return document && reader && reader->ParseXMLFile(path, document.Get()) &&
           VekIsSameXML(document->GetRootElement(), root);
}

bool Fail(wchar_t const * what, wchar_t const * path) noexcept
{
    VekLogOutput(0, L"VekSaveXMLDocument --> %s %s", what, path);
    return false;
}

} // namespace

bool VekSaveXMLDocument(wchar_t const * path, IVekXMLDocument * document, IVekXMLWriter * writer,
                        IVekXMLParser * parser)
{
    IVekXMLManager * const manager = getVekLibKernel()->GetXMLManager();
    IVekXMLElement const * const root = document ? document->GetRootElement() : nullptr;
    if (!path || !manager || !root)
        return Fail(L"No path, or no document with a root for", path ? path : L"");
    if (!IsReplaceable(path))
        return Fail(L"Failed to replace", path);
    CVekRef<IVekXMLWriter> const own(writer ? nullptr : manager->CreateXMLWriter());
    IVekXMLWriter * const used = writer ? writer : own.Get();
    FileBeside file(path);
    if (!used || file.Path().IsEmpty() || !used->WriteXMLFile(file.Path(), document) || !file.Flush())
        return Fail(L"Failed to write a new file beside", path);
    if (!ReadsBack(file.Path(), *manager, parser, root))
        return Fail(L"What was written reads back as another document, for", path);
    return file.Place() || Fail(L"Failed to replace", path);
}
