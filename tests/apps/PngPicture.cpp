#include "PngPicture.h"

#include <windows.h>

#include <wincodec.h>

Picture ReadPng(std::wstring const & path)
{
    Picture picture;
    IWICImagingFactory * factory = nullptr;
    IWICBitmapDecoder * decoder = nullptr;
    IWICBitmapFrameDecode * frame = nullptr;
    IWICBitmapSource * source = nullptr;
    UINT width = 0, height = 0;
    bool const hasCom = SUCCEEDED(CoInitialize(nullptr));
    if (SUCCEEDED(CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER, IID_IWICImagingFactory,
                                   reinterpret_cast<void **>(&factory))) &&
        SUCCEEDED(factory->CreateDecoderFromFilename(path.c_str(), nullptr, GENERIC_READ, WICDecodeMetadataCacheOnLoad,
                                                     &decoder)) &&
        SUCCEEDED(decoder->GetFrame(0, &frame)) &&
        SUCCEEDED(WICConvertBitmapSource(GUID_WICPixelFormat32bppBGR, frame, &source)) &&
        SUCCEEDED(source->GetSize(&width, &height)))
    {
        picture.width = static_cast<int>(width);
        picture.height = static_cast<int>(height);
        picture.pixels.resize(std::size_t{width} * height);
        source->CopyPixels(nullptr, 4 * width, 4 * width * height, reinterpret_cast<BYTE *>(picture.pixels.data()));
        for (std::uint32_t & pixel : picture.pixels)
            pixel &= 0x00FFFFFF;
    }
    for (IUnknown * object : {static_cast<IUnknown *>(source), static_cast<IUnknown *>(frame),
                              static_cast<IUnknown *>(decoder), static_cast<IUnknown *>(factory)})
        if (object)
            object->Release();
    if (hasCom)
        CoUninitialize();
    return picture;
}
