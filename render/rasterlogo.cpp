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
std::vector<uchar> shrunk(const uchar* source, int sourceWidth, int sourceHeight, int width, int height)
{
    std::vector<int> left(std::size_t(width) + 1);
    for (int x = 0; x <= width; ++x)
        left[std::size_t(x)] = int(qint64(x) * sourceWidth / width);
    std::vector<uchar> out(std::size_t(width) * std::size_t(height));
    std::vector<qint64> sums(std::size_t(width), 0);
    for (int y = 0; y < height; ++y) {
        const int top = int(qint64(y) * sourceHeight / height);
        const int bottom = std::max(top + 1, int(qint64(y + 1) * sourceHeight / height));
        std::fill(sums.begin(), sums.end(), qint64(0));
        for (int sy = top; sy < bottom; ++sy) {
            const uchar* row = source + qsizetype(sy) * sourceWidth;
            for (int x = 0; x < width; ++x) {
                const int right = std::max(left[std::size_t(x)] + 1, left[std::size_t(x) + 1]);
                for (int sx = left[std::size_t(x)]; sx < right; ++sx)
                    sums[std::size_t(x)] += row[sx];
            }
        }
        for (int x = 0; x < width; ++x) {
            const int right = std::max(left[std::size_t(x)] + 1, left[std::size_t(x) + 1]);
            out[std::size_t(y) * std::size_t(width) + std::size_t(x)]
                = uchar(sums[std::size_t(x)] / ((bottom - top) * (right - left[std::size_t(x)])));
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
    const auto* source = reinterpret_cast<const uchar*>(grey.constData());
    std::vector<uchar> smaller;
    if (image.width != sourceWidth || image.height != sourceHeight) {
        smaller = shrunk(source, sourceWidth, sourceHeight, image.width, image.height);
        source = smaller.data();
    }
    image.bits = QByteArray(qsizetype(image.bytesPerRow()) * image.height, '\0');
    auto* bits = reinterpret_cast<uchar*>(image.bits.data());
    // Floyd-Steinberg: what a dot's black or white misses of its grey is
    // passed on to the dots right of it and below it. The errors of two
    // rows are kept, with a dot to spare on either side for what would
    // fall off the picture.
    const int w = image.width;
    std::vector<int> errors(2 * (std::size_t(w) + 2));
    int* here = errors.data() + 1;
    int* below = here + w + 2;
    for (int y = 0; y < image.height; ++y) {
        const uchar* row = source + qsizetype(y) * w;
        uchar* out = bits + qsizetype(y) * image.bytesPerRow();
        std::fill(below - 1, below + w + 1, 0);
        for (int x = 0; x < w; ++x) {
            const int level = row[x] + here[x];
            const bool black = level < 128;
            const int error = level - (black ? 0 : 255);
            if (black)
                out[x >> 3] |= uchar(0x80 >> (x & 7));
            here[x + 1] += error * 7 / 16;
            below[x - 1] += error * 3 / 16;
            below[x] += error * 5 / 16;
            below[x + 1] += error / 16;
        }
        std::swap(here, below);
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
