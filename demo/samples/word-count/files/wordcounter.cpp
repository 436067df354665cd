// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "wordcounter.h"

#include <algorithm>
#include <cctype>

namespace {

// The bytes of letters beyond ASCII all have the highest bit set.
bool isWordPart(unsigned char byte)
{
    return std::isalnum(byte) || byte >= 0x80;
}

} // namespace

void WordCounter::read(std::istream &input)
{
    std::string word;
    for (char byte; input.get(byte);) {
        if (isWordPart(static_cast<unsigned char>(byte))) {
            word += static_cast<char>(std::tolower(static_cast<unsigned char>(byte)));
        } else {
            add(word);
            word.clear();
        }
    }
    add(word);
}

std::vector<std::pair<std::string, int>> WordCounter::mostFrequent(std::size_t count) const
{
    std::vector<std::pair<std::string, int>> words(m_counts.begin(), m_counts.end());
    std::stable_sort(words.begin(), words.end(), [](const auto &one, const auto &other) {
        return one.second > other.second;
    });
    words.resize(std::min(count, words.size()));
    return words;
}

void WordCounter::add(const std::string &word)
{
    if (word.empty())
        return;
    ++m_counts[word];
    ++m_total;
}
