#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

// A picture as a thermal printer's head prints it: rows of dots, each
// black or white.
struct RasterImage
{
    int width = 0;  // in dots
    int height = 0; // in dots
    // Row after row, each bytesPerRow() bytes, the leftmost dot in the
    // highest bit; a set bit is a black dot.
    QByteArray bits;

    int bytesPerRow() const { return (width + 7) / 8; }
    bool blackAt(int x, int y) const
    {
        return (uchar(bits[qsizetype(y) * bytesPerRow() + x / 8]) >> (7 - x % 8)) & 1;
    }
};

// Reads a PNG file for the printer: transparent parts on white paper,
// scaled down (never up) to at most `widestDots` wide, dithered to black
// and white. Empty, with the reason in `error`, when the file cannot be
// read or is too large to be a logo.
std::optional<RasterImage> readRasterLogo(const QString& path, int widestDots, QString* error);

// The same from grey levels (0 black to 255 white), `width` a row.
RasterImage ditheredRaster(const QByteArray& grey, int width, int height, int widestDots);
