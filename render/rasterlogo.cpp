#include "rasterlogo.h"

#include <QFile>

#include <png.h>

#include <algorithm>
#include <memory>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

// More than any logo needs (4000 x 4000); a larger picture would only take
// memory and time from the print run.
constexpr qint64 largestPixelCount = 16'000'000;

// Shrinks a grey picture to `width` x `height` by averaging the block of
// source pixels each target pixel covers.
std::vector<int> shrunk(const QByteArray& grey, int sourceWidth, int sourceHeight, int width, int height)
{
    std::vector<int> out(std::size_t(width) * std::size_t(height));
    const auto* source = reinterpret_cast<const uchar*>(grey.constData());
    for (int y = 0; y < height; ++y) {
        const int top = int(qint64(y) * sourceHeight / height);
        const int bottom = std::max(top + 1, int(qint64(y + 1) * sourceHeight / height));
        for (int x = 0; x < width; ++x) {
            const int left = int(qint64(x) * sourceWidth / width);
            const int right = std::max(left + 1, int(qint64(x + 1) * sourceWidth / width));
            qint64 sum = 0;
            for (int sy = top; sy < bottom; ++sy) {
                const uchar* row = source + qsizetype(sy) * sourceWidth;
                for (int sx = left; sx < right; ++sx)
                    sum += row[sx];
            }
            out[std::size_t(y) * std::size_t(width) + std::size_t(x)] = int(sum / (qint64(bottom - top) * (right - left)));
        }
    }
    return out;
}

} // namespace

RasterImage ditheredRaster(const QByteArray& grey, int sourceWidth, int sourceHeight, int widestDots)
{
    RasterImage image;
    image.width = std::min(sourceWidth, std::max(widestDots, 1));
    image.height = std::max(1, int(qint64(sourceHeight) * image.width / sourceWidth));
    std::vector<int> level = shrunk(grey, sourceWidth, sourceHeight, image.width, image.height);
    image.bits = QByteArray(qsizetype(image.bytesPerRow()) * image.height, '\0');
    // Floyd-Steinberg: what a dot's black or white misses of its grey is
    // passed on to the dots right of it and below it.
    const int w = image.width;
    for (int y = 0; y < image.height; ++y) {
        int* row = level.data() + std::size_t(y) * std::size_t(w);
        int* below = y + 1 < image.height ? row + w : nullptr;
        for (int x = 0; x < w; ++x) {
            const bool black = row[x] < 128;
            const int error = row[x] - (black ? 0 : 255);
            if (black)
                image.bits[qsizetype(y) * image.bytesPerRow() + x / 8] |= char(0x80 >> (x % 8));
            if (x + 1 < w)
                row[x + 1] += error * 7 / 16;
            if (below) {
                if (x > 0)
                    below[x - 1] += error * 3 / 16;
                below[x] += error * 5 / 16;
                if (x + 1 < w)
                    below[x + 1] += error / 16;
            }
        }
    }
    return image;
}

std::optional<RasterImage> readRasterLogo(const QString& path, int widestDots, QString* error)
{
    png_image png{};
    png.version = PNG_IMAGE_VERSION;
    const auto fail = [&png, error](const QString& why) -> std::optional<RasterImage> {
        if (error)
            *error = why;
        png_image_free(&png);
        return std::nullopt;
    };
    if (!png_image_begin_read_from_file(&png, QFile::encodeName(path).constData()))
        return fail(QString::fromLocal8Bit(png.message));
    if (png.width == 0 || png.height == 0 || png.height > 0xffff
        || qint64(png.width) * png.height > largestPixelCount)
        return fail(u"%1 x %2 dots is no size for a logo"_s.arg(png.width).arg(png.height));
    png.format = PNG_FORMAT_GRAY;
    QByteArray grey(qsizetype(PNG_IMAGE_SIZE(png)), Qt::Uninitialized);
    // Transparent parts are laid on the white of the paper.
    const png_color white{255, 255, 255};
    if (!png_image_finish_read(&png, &white, grey.data(), 0, nullptr))
        return fail(QString::fromLocal8Bit(png.message));
    png_image_free(&png);
    return ditheredRaster(grey, int(png.width), int(png.height), widestDots);
}
