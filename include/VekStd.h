/// @file
/// The library's texts, references, bytes, source texts, curves and workers beside the standard library's. VekLib.h
/// does not bring this header: a host that uses the standard library includes it. The functions may throw
/// std::bad_alloc, where they make something of the standard library's.
///
/// @code
/// if (std::optional<std::wstring> const text = VekReadTextFile(L"names.txt"))
/// {
///     std::wstring_view const firstLine = std::wstring_view(*text).substr(0, text->find(L'\n'));
///     CVekString<wchar_t> const name = VekToString(firstLine);
///     VekWriteTextFile(L"first.txt", VekView(name));
/// }
/// @endcode
#ifndef VEK_STD_H
#define VEK_STD_H

#include "VekLib.h"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstring>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#if __cplusplus >= 202002L || (defined(_MSVC_LANG) && _MSVC_LANG >= 202002L)
#if __has_include(<span>)
#include <span>
#endif
#endif

// --- texts ----------------------------------------------------------------------------------------------------------

/// The string's characters, valid until it is changed or destroyed.
template <class T>
std::basic_string_view<T> VekView(CVekString<T> const & string) noexcept
{
    return {static_cast<T const *>(string), static_cast<std::size_t>(string.GetLength())};
}

/// A copy of the string.
template <class T>
std::basic_string<T> VekToStd(CVekString<T> const & string)
{
    return std::basic_string<T>(VekView(string));
}

/// @cond internal
namespace vek
{
template <class T>
CVekString<T> ToString(std::basic_string_view<T> text) noexcept
{
    std::size_t const length = text.find(T(0)) == text.npos ? text.size() : text.find(T(0));
    return length <= 0x7FFFFFF0 ? CVekString<T>(text.data(), static_cast<int>(length)) : CVekString<T>();
}
} // namespace vek
/// @endcond

/// A copy of the text up to its first zero. Empty for a text of 2 GB and more, and when memory is exhausted.
inline CVekString<wchar_t> VekToString(std::wstring_view text) noexcept
{
    return vek::ToString(text);
}
inline CVekString<char> VekToString(std::string_view text) noexcept
{
    return vek::ToString(text);
}

/// A variant of the type VEK_DT_STRINGW or VEK_DT_STRINGA, with a copy as VekToString makes it. A narrow text is no
/// UTF-8 for the library: see VekWideFromUtf8.
inline VEK_VARIANT VekToVariant(std::wstring_view text)
{
    return VekToString(text);
}
inline VEK_VARIANT VekToVariant(std::string_view text)
{
    return VekToString(text);
}

/// By value, as the operator == compares.
template <class T>
struct std::hash<CVekString<T>>
{
    /// The hash of the characters.
    std::size_t operator()(CVekString<T> const & string) const noexcept
    {
        return std::hash<std::basic_string_view<T>>()(VekView(string));
    }
};

/// By the object, as the operator == compares.
template <class T>
struct std::hash<CVekRef<T>>
{
    /// The hash of the address.
    std::size_t operator()(CVekRef<T> const & reference) const noexcept
    {
        return std::hash<T const *>()(reference.Get());
    }
};

// --- UTF-8 ----------------------------------------------------------------------------------------------------------

/// @cond internal
namespace vek
{
static_assert(sizeof(wchar_t) == 2, "wide text is UTF-16");

/// Takes the character that the bytes begin with off them; 0x110000, with the bytes as they were, when it is none:
/// overlong, cut off, half of a surrogate pair, or out of range.
inline char32_t TakeUtf8(std::string_view & bytes) noexcept
{
    constexpr char32_t LEAST[] = {0, 0x80, 0x800, 0x10000};
    constexpr char32_t NONE = 0x110000;
    char32_t const first = static_cast<unsigned char>(bytes[0]);
    std::size_t const more = first < 0x80 ? 0 : first < 0xE0 ? 1 : first < 0xF0 ? 2 : 3;
    if ((first >= 0x80 && first < 0xC2) || first > 0xF4 || bytes.size() <= more)
        return NONE;
    char32_t character = more == 0 ? first : first & (0x3FU >> more);
    for (std::size_t i = 1; i <= more; ++i)
    {
        char32_t const next = static_cast<unsigned char>(bytes[i]);
        if ((next & 0xC0) != 0x80)
            return NONE;
        character = character << 6 | (next & 0x3F);
    }
    if (character < LEAST[more] || (character & 0x1FF800) == 0xD800 || character > 0x10FFFF)
        return NONE;
    bytes.remove_prefix(more + 1);
    return character;
}

inline void AppendUtf8(std::string & bytes, char32_t character)
{
    int const more = character < 0x80 ? 0 : character < 0x800 ? 1 : character < 0x10000 ? 2 : 3;
    constexpr char32_t MARKS[] = {0, 0xC0, 0xE0, 0xF0};
    bytes.push_back(static_cast<char>(MARKS[more] | character >> (6 * more)));
    for (int i = more - 1; i >= 0; --i)
        bytes.push_back(static_cast<char>(0x80 | (character >> (6 * i) & 0x3F)));
}
} // namespace vek
/// @endcond

/// UTF-8 as wide text; nothing when the bytes are not well formed: overlong forms, sequences that are cut off, halves
/// of surrogate pairs and numbers beyond U+10FFFF. A byte order mark is a character as any other.
inline std::optional<std::wstring> VekWideFromUtf8(std::string_view bytes)
{
    std::wstring wide;
    wide.reserve(bytes.size());
    while (!bytes.empty())
    {
        char32_t const character = vek::TakeUtf8(bytes);
        if (character > 0x10FFFF)
            return std::nullopt;
        if (character > 0xFFFF)
            wide.push_back(static_cast<wchar_t>(0xD7C0 + (character >> 10)));
        wide.push_back(static_cast<wchar_t>(character > 0xFFFF ? 0xDC00 | (character & 0x3FF) : character));
    }
    return wide;
}
#if defined(__cpp_lib_char8_t)
/// The same for bytes that are UTF-8 by their type.
inline std::optional<std::wstring> VekWideFromUtf8(std::u8string_view bytes)
{
    return VekWideFromUtf8(std::string_view(reinterpret_cast<char const *>(bytes.data()), bytes.size()));
}
#endif

/// Wide text as UTF-8; nothing when it holds half of a surrogate pair without the other.
inline std::optional<std::string> VekUtf8FromWide(std::wstring_view wide)
{
    std::string bytes;
    bytes.reserve(wide.size() + wide.size() / 8);
    for (std::size_t i = 0; i < wide.size(); ++i)
    {
        char32_t character = wide[i];
        if ((character & 0xF800) == 0xD800)
        {
            bool const isPair = character < 0xDC00 && i + 1 < wide.size() && (wide[i + 1] & 0xFC00) == 0xDC00;
            if (!isPair)
                return std::nullopt;
            character = 0x10000 + ((character & 0x3FF) << 10) + (wide[++i] & 0x3FF);
        }
        vek::AppendUtf8(bytes, character);
    }
    return bytes;
}
inline std::optional<std::string> VekUtf8FromWide(CVekString<wchar_t> const & wide)
{
    return VekUtf8FromWide(VekView(wide));
}

// --- bytes ----------------------------------------------------------------------------------------------------------

/// An attribute's text, with its escaping undone; nothing when there is none of that name.
inline std::optional<std::wstring> VekAttributeText(IVekXMLElement const & element, wchar_t const * name)
{
    CVekString<wchar_t> text;
    if (!element.GetAttributeValue(name, text, nullptr))
        return std::nullopt;
    return VekToStd(text);
}

/// The text of an element's CDATA section, valid until the section is removed; empty without one.
inline std::wstring_view VekCDATAText(IVekXMLElement const & element) noexcept
{
    auto const size = static_cast<std::size_t>(element.GetCDATASectionSize());
    return {reinterpret_cast<wchar_t const *>(element.GetCDATASection()), size / sizeof(wchar_t)};
}

/// Makes the text the element's CDATA section, in place of the one it has. False, with a message, when memory is
/// exhausted, or for a text of 2 GB and more; the element has no section then.
inline bool VekSetCDATAText(IVekXMLElement & element, std::wstring_view text)
{
    // The text may be the section's own.
    std::wstring const copy(text);
    element.RemoveCDATASection();
    int const size = copy.size() < 0x40000000 ? static_cast<int>(copy.size() * sizeof(wchar_t)) : -1;
    return element.AddCDATASection(reinterpret_cast<unsigned char const *>(copy.data()), size);
}

/// All bytes of a file; nothing, with a message, when it can't be read whole.
inline std::optional<std::string> VekReadFile(wchar_t const * path)
{
    CVekFileIOStream file;
    if (!file.Open(path, VEK_IO_READ | VEK_IO_BINARY, 0))
        return std::nullopt;
    unsigned int const size = file.GetSize();
    std::string bytes(size, '\0');
    if (size > 0 && !file.Read(bytes.data(), size, true))
        return std::nullopt;
    return bytes;
}

/// Makes a file of the bytes, in place of one that is there; false, with a message, when they can't be written whole.
inline bool VekWriteFile(wchar_t const * path, std::string_view bytes)
{
    CVekFileIOStream file;
    return bytes.size() < 0xFFFFFFFF && file.Open(path, VEK_IO_WRITE | VEK_IO_BINARY, 0) &&
           (bytes.empty() || file.Write(bytes.data(), static_cast<unsigned int>(bytes.size()), true)) && file.Flush();
}

/// The text of a UTF-8 file; nothing when it can't be read whole, with a message, or is not well formed, as
/// VekWideFromUtf8 has it.
inline std::optional<std::wstring> VekReadTextFile(wchar_t const * path)
{
    std::optional<std::string> const bytes = VekReadFile(path);
    return bytes ? VekWideFromUtf8(*bytes) : std::nullopt;
}

/// Makes a UTF-8 file of the text, in place of one that is there; false when it can't be written whole, with a message,
/// or holds half of a surrogate pair, with the old file untouched.
inline bool VekWriteTextFile(wchar_t const * path, std::wstring_view text)
{
    std::optional<std::string> const bytes = VekUtf8FromWide(text);
    return bytes && VekWriteFile(path, *bytes);
}

#if defined(__cpp_lib_span)
/// The block of a memory stream, valid until it is closed; empty for a closed one.
inline std::span<std::byte> VekBytes(IVekMemoryIOStream & stream) noexcept
{
    return {reinterpret_cast<std::byte *>(stream.GetBuffer()), stream.GetBuffer() ? stream.GetSize() : 0};
}
inline std::span<std::byte const> VekBytes(IVekMemoryIOStream const & stream) noexcept
{
    return {reinterpret_cast<std::byte const *>(stream.GetBuffer()), stream.GetBuffer() ? stream.GetSize() : 0};
}

/// Opens a memory stream on a copy of the bytes, at its start, for reading and writing in binary mode. False, with a
/// message, when there is no memory or there are 2 GB and more.
inline bool VekOpenBytes(IVekMemoryIOStream & stream, std::span<std::byte const> bytes)
{
    unsigned int const size = bytes.size() <= 0x7FFFFFFF ? static_cast<unsigned int>(bytes.size()) : 0xFFFFFFFF;
    if (!stream.Open(L"", VEK_IO_BINARY | VEK_IO_READ | VEK_IO_WRITE, size))
        return false;
    if (!bytes.empty())
        std::memcpy(stream.GetBuffer(), bytes.data(), bytes.size());
    return true;
}
#endif

// --- source texts ---------------------------------------------------------------------------------------------------

/// @cond internal
namespace vek
{
/// Stands for a minus sign, which would begin a number for the lexer.
constexpr wchar_t MINUS = L'\xE000';

/// Calls add(word, id) for each of the words between blanks, until one is false.
template <class Add>
bool AddWords(std::wstring_view words, int id, Add add)
{
    constexpr wchar_t const * BLANKS = L" \t\n";
    for (std::size_t begin = words.find_first_not_of(BLANKS); begin != words.npos; ++id)
    {
        std::size_t const end = std::min(words.find_first_of(BLANKS, begin), words.size());
        if (!add(std::wstring(words.substr(begin, end - begin)).c_str(), id))
            return false;
        begin = words.find_first_not_of(BLANKS, end);
    }
    return true;
}
} // namespace vek
/// @endcond

/// Adds the words between the blanks as keywords, which count with their case; their identifiers are firstId and the
/// numbers from there on. False when memory is exhausted.
inline bool VekAddKeywords(IVekLexer & lexer, std::wstring_view words, int firstId = 0)
{
    return vek::AddWords(words, firstId,
                         [&](wchar_t const * word, int id) { return lexer.AddKeyword(word, id, true); });
}

/// Adds what stands between the blanks as operators, numbered alike, such as L"+ - -> =": of those that share their
/// beginning the shorter ones come first. Those with a minus sign are for VekTokenizeSource. False when memory is
/// exhausted.
inline bool VekAddOperators(IVekLexer & lexer, std::wstring_view operators, int firstId = 0)
{
    std::wstring prepared(operators);
    std::replace(prepared.begin(), prepared.end(), L'-', vek::MINUS);
    return vek::AddWords(prepared, firstId, [&](wchar_t const * text, int id) { return lexer.AddOperator(text, id); });
}

/// Tokenizes a text in which a minus sign is an operator and a carriage return a blank; the lexer alone takes the one
/// for the beginning of a number and the other for part of an operator. Places are those in the text, but in the texts
/// of tokens U+E000 stands for each minus sign: see VekPieces. False as IVekTokenizer::Tokenize, and for a text of 2 GB
/// and more.
inline bool VekTokenizeSource(IVekTokenizer & tokenizer, IVekLexer & lexer, std::wstring_view source)
{
    std::wstring prepared(source);
    std::replace(prepared.begin(), prepared.end(), L'-', vek::MINUS);
    std::replace(prepared.begin(), prepared.end(), L'\r', L' ');
    return prepared.size() <= 0x7FFFFFFF &&
           tokenizer.Tokenize(&lexer, prepared.c_str(), static_cast<int>(prepared.size()));
}

/// A piece of a text in a loop: a token as it stands there, or with null what stands between two of them: blanks,
/// comments, and tokens that don't pass the filter.
struct VekPiece
{
    /// As it stands in the source.
    std::wstring_view text;
    /// Null between two tokens. It stays the tokenizer's.
    IVekTokenizer::IToken const * token;
};

/// A text in pieces, which make up the whole of it; the tokenizer has been given the text, which must last as long as
/// the loop. The number behind an error, which stands at the same place, is left out.
///
///     for (auto const & [text, token] : VekPieces(tokenizer, source))
class VekPieces
{
public:
    /// @cond internal
    class Iterator
    {
    public:
        Iterator(IVekTokenizer const & tokenizer, std::wstring_view text) noexcept
            : m_tokenizer(&tokenizer), m_rest(text)
        {
            Settle();
        }
        VekPiece const & operator*() const noexcept { return m_piece; }
        Iterator & operator++() noexcept
        {
            m_position += m_piece.text.size();
            m_rest.remove_prefix(m_piece.text.size());
            Settle();
            return *this;
        }
        bool operator!=(vek::WalkEnd) const noexcept { return !m_rest.empty(); }

    private:
        void Settle() noexcept
        {
            IVekTokenizer::IToken const * token = m_tokenizer->GetToken(m_index);
            while (token && (PositionOf(*token) < m_position || token->GetLength() <= 0))
                token = m_tokenizer->GetToken(++m_index);
            std::size_t const before = token ? PositionOf(*token) - m_position : m_rest.size();
            if (before == 0 && token)
                m_piece = {m_rest.substr(0, static_cast<std::size_t>(token->GetLength())), token};
            else
                m_piece = {m_rest.substr(0, before), nullptr};
        }
        static std::size_t PositionOf(IVekTokenizer::IToken const & token) noexcept
        {
            return static_cast<std::size_t>(token.GetPosition());
        }

        IVekTokenizer const * m_tokenizer;
        std::wstring_view m_rest;
        std::size_t m_position = 0;
        int m_index = 0;
        VekPiece m_piece{};
    };
    /// @endcond

    /// Both must last as long as the pieces are used.
    VekPieces(IVekTokenizer const & tokenizer, std::wstring_view text) noexcept : m_tokenizer(tokenizer), m_text(text)
    {
    }
    /// For range-based loops.
    Iterator begin() const noexcept { return {m_tokenizer, m_text}; }
    static vek::WalkEnd end() noexcept { return {}; }

private:
    IVekTokenizer const & m_tokenizer;
    std::wstring_view m_text;
};

// --- curves ---------------------------------------------------------------------------------------------------------

/// The curve through the points, as CVekNurbsCurve::CreateInterpolation makes it; an empty one, with a message, when
/// that fails.
template <class T>
CVekNurbsCurve<T> VekInterpolate(unsigned int degree, std::vector<CVekVector3D<T>> const & points)
{
    // One too many is refused as any larger number is.
    std::size_t const count = std::min<std::size_t>(points.size(), CVekNurbsCurve<T>::MAX_POINTS + 1);
    CVekNurbsCurve<T> curve;
    curve.CreateInterpolation(degree, points.data(), static_cast<unsigned int>(count));
    return curve;
}

/// The points of CVekNurbsCurve::Tessellate; none for an empty curve, or without a tolerance.
template <class T>
std::vector<CVekVector3D<T>> VekTessellate(CVekNurbsCurve<T> const & curve, T tolerance)
{
    constexpr unsigned int MOSTLY_ENOUGH = 256;
    std::vector<CVekVector3D<T>> points(MOSTLY_ENOUGH);
    unsigned int const count = curve.Tessellate(tolerance, points.data(), nullptr, MOSTLY_ENOUGH);
    points.resize(count);
    if (count > MOSTLY_ENOUGH)
        curve.Tessellate(tolerance, points.data(), nullptr, count);
    return points;
}

// --- workers --------------------------------------------------------------------------------------------------------

/// Gives the controller a callback that shows the current task's progress, in percent, and name, as
/// IVekProgressController::Callback does: false asks the working code to stop, and no exception may leave it.
inline void VekSetProgressCallback(IVekProgressController & controller,
                                   std::function<bool(double percent, wchar_t const * task)> show)
{
    class Callback final : public CVekRefCounted<IVekProgressController::Callback>
    {
    public:
        explicit Callback(std::function<bool(double, wchar_t const *)> function) : m_show(std::move(function)) {}
        bool OnProgress(double taskProgress, double, wchar_t const * taskName, int) override
        {
            return m_show(taskProgress, taskName);
        }

    private:
        std::function<bool(double, wchar_t const *)> m_show;
    };
    CVekRef<Callback> const callback{new Callback(std::move(show))};
    controller.SetCallback(callback.Get());
}

/// @cond internal
namespace vek
{
/// What the workers of one run share. A worker may look at it after its caller has gone on.
struct WorkerRun
{
    std::function<void(std::size_t)> work;
    std::size_t count = 0;
    bool tellsEach = false;
    std::atomic<std::size_t> next{0}, done{0};
    std::atomic<unsigned int> working{0};
    std::atomic<bool> isStopped{false};
    CVekSignal change;
};

/// One for each worker; also where one is never run, its end counts.
class WorkerCommand final : public CVekThreadCommand
{
public:
    explicit WorkerCommand(std::shared_ptr<WorkerRun> run) : m_run(std::move(run)) { ++m_run->working; }
    WorkerCommand(WorkerCommand const &) = delete;
    WorkerCommand & operator=(WorkerCommand const &) = delete;
    ~WorkerCommand() override
    {
        --m_run->working;
        m_run->change.SetSignal();
    }
    void Execute() override
    {
        for (std::size_t i = m_run->next++; i < m_run->count && !m_run->isStopped; i = m_run->next++)
        {
            m_run->work(i);
            ++m_run->done;
            if (m_run->tellsEach)
                m_run->change.SetSignal();
        }
    }

private:
    std::shared_ptr<WorkerRun> m_run;
};

/// The workers of one run; its end stops them, and waits for what they are at.
class Workers
{
public:
    explicit Workers(std::shared_ptr<WorkerRun> run) : m_run(std::move(run)) {}
    Workers(Workers const &) = delete;
    Workers & operator=(Workers const &) = delete;
    ~Workers()
    {
        m_run->isStopped = true;
        while (m_run->working > 0)
            m_run->change.Lock();
    }
    void Add()
    {
        CVekRef<IVekThread> thread{getVekLibKernel()->CreateThread(L"worker", nullptr, false, 0, 0)};
        if (!thread)
            return;
        thread->Start();
        if (!thread->GetHandle())
            return;
        m_threads.push_back(std::move(thread));
        m_threads.back()->AddCommand(new WorkerCommand(m_run));
    }

private:
    std::shared_ptr<WorkerRun> m_run;
    std::vector<CVekRef<IVekThread>> m_threads;
};
} // namespace vek
/// @endcond

/// Calls work for each index below count, on so many worker threads, and returns when all is done: true then. The
/// progress controller, which may be null, hears of it on the calling thread, whenever one is done: its current task
/// goes on by 100 percent in all. When that cancels it, the workers end with what they are at, and the result is false;
/// also when no worker can be started. An exception that leaves work ends the process.
inline bool VekRunOnWorkers(std::size_t count, unsigned int workers, std::function<void(std::size_t)> work,
                            IVekProgressController * progress = nullptr)
{
    auto const run = std::make_shared<vek::WorkerRun>();
    run->work = std::move(work);
    run->count = count;
    run->tellsEach = progress != nullptr;
    vek::Workers crew(run);
    for (std::size_t i = 0; i < workers && i < count; ++i)
        crew.Add();
    std::size_t told = 0;
    for (bool isOver = false; !isOver;)
    {
        isOver = run->working == 0;
        if (!isOver)
            run->change.Lock();
        std::size_t const done = run->done;
        if (progress && done > told)
            progress->Progress(100.0 * static_cast<double>(done - told) / static_cast<double>(count));
        run->isStopped = progress && progress->IsCancelled();
        told = done;
    }
    return run->done == count;
}

#endif
