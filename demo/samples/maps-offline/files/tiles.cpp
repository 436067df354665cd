// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "tiles.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double PI = 3.14159265358979323846;
constexpr double NORTHERN_EDGE = 85.0511; // degrees, where the grid ends

int column(double longitude, int zoom)
{
    const int count = 1 << zoom;
    return std::clamp(int(std::floor((longitude + 180) / 360 * count)), 0, count - 1);
}

int row(double latitude, int zoom)
{
    const int count = 1 << zoom;
    const double angle = std::clamp(latitude, -NORTHERN_EDGE, NORTHERN_EDGE) * PI / 180;
    const double share = (1 - std::asinh(std::tan(angle)) / PI) / 2;
    return std::clamp(int(std::floor(share * count)), 0, count - 1);
}

} // namespace

std::vector<Tile> tilesOf(const Area &area, int zoom)
{
    std::vector<Tile> tiles;
    for (int y = row(area.north, zoom); y <= row(area.south, zoom); ++y) {
        for (int x = column(area.west, zoom); x <= column(area.east, zoom); ++x)
            tiles.push_back({zoom, x, y});
    }
    return tiles;
}
