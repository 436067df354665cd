// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "tiles.h"

#include <cstdlib>
#include <iostream>

int main(int argc, char *argv[])
{
    if (argc != 6) {
        std::cerr << "usage: mapsoffline WEST SOUTH EAST NORTH ZOOM\n";
        return 1;
    }
    const Area area{std::atof(argv[1]), std::atof(argv[2]), std::atof(argv[3]), std::atof(argv[4])};
    const int zoom = std::atoi(argv[5]);
    if (zoom < 0 || zoom > 20) {
        std::cerr << "the zoom level must be between 0 and 20\n";
        return 1;
    }
    for (const Tile &tile : tilesOf(area, zoom))
        std::cout << tile.zoom << '/' << tile.column << '/' << tile.row << '\n';
}
