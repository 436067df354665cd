// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <vector>

struct Area
{
    double west = 0; // degrees, as all of them
    double south = 0;
    double east = 0;
    double north = 0;
};

struct Tile
{
    int zoom = 0;
    int column = 0; // from the antimeridian eastwards
    int row = 0;    // from the northern edge southwards
};

/** The tiles of one zoom level, in a Mercator grid of 2^zoom columns and rows, that touch an area. */
std::vector<Tile> tilesOf(const Area &area, int zoom);
