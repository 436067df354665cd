// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <istream>
#include <map>
#include <string>
#include <utility>
#include <vector>

/**
 * Counts words regardless of the case of their ASCII letters; everything but letters and digits separates
 * them.
 */
class WordCounter
{
public:
    void read(std::istream &input);

    [[nodiscard]] int total() const { return m_total; }
    /** Up to @p count words, the most frequent one first, equally frequent ones in alphabetical order. */
    [[nodiscard]] std::vector<std::pair<std::string, int>> mostFrequent(std::size_t count) const;

private:
    void add(const std::string &word);

    std::map<std::string, int> m_counts;
    int m_total = 0;
};
