#include "PngFile.h"

#include "VekRef.h"

#include "Platform.h"

#include <wincodec.h>

namespace tool
{

namespace
{

template <class T>
using Com = CVekRef<T>;

/// Takes over what a function returns through its last parameter; null when it failed.
template <class T, class Function>
Com<T> Get(Function function)
{
    T * object = nullptr;
    return SUCCEEDED(function(&object)) ? Com<T>(object) : nullptr;
}

bool WritePixels(IWICBitmapFrameEncode & frame, Canvas const & canvas)
{
    WICPixelFormatGUID format = GUID_WICPixelFormat24bppBGR;
    UINT const width = static_cast<UINT>(canvas.Width()), height = static_cast<UINT>(canvas.Height());
    if (FAILED(frame.Initialize(nullptr)) || FAILED(frame.SetSize(width, height)) ||
        FAILED(frame.SetPixelFormat(&format)) || format != GUID_WICPixelFormat24bppBGR)
        return false;
    std::vector<BYTE> row(3 * std::size_t{width});
    for (UINT y = 0; y < height; ++y)
    {
        std::uint32_t const * const pixels = canvas.Pixels() + std::size_t{y} * width;
        for (std::size_t i = 0; i < row.size(); ++i)
            row[i] = static_cast<BYTE>(pixels[i / 3] >> (8 * (i % 3)));
        if (FAILED(frame.WritePixels(1, 3 * width, 3 * width, row.data())))
            return false;
    }
    return SUCCEEDED(frame.Commit());
}

bool Encode(IWICImagingFactory & factory, IStream & stream, Canvas const & canvas)
{
    auto const encoder =
        Get<IWICBitmapEncoder>([&](auto out) { return factory.CreateEncoder(GUID_ContainerFormatPng, nullptr, out); });
    if (!encoder || FAILED(encoder->Initialize(&stream, WICBitmapEncoderNoCache)))
        return false;
    auto const frame = Get<IWICBitmapFrameEncode>([&](auto out) { return encoder->CreateNewFrame(out, nullptr); });
    return frame && WritePixels(*frame, canvas) && SUCCEEDED(encoder->Commit());
}

} // namespace

bool WritePng(Canvas const & canvas, std::wstring const & path)
{
    auto const factory = Get<IWICImagingFactory>(
        [](auto out)
        {
            return CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER, IID_IWICImagingFactory,
                                    reinterpret_cast<void **>(out));
        });
    if (!factory)
        return false;
    auto stream = Get<IWICStream>([&](auto out) { return factory->CreateStream(out); });
    if (!stream || FAILED(stream->InitializeFromFilename(path.c_str(), GENERIC_WRITE)))
        return false;
    bool const written = Encode(*factory, *stream, canvas);
    stream.Reset();
    if (!written)
        DeleteFileW(path.c_str());
    return written;
}

} // namespace tool
