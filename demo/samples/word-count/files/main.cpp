// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "wordcounter.h"

#include <fstream>
#include <iostream>

int main(int argc, char *argv[])
{
    WordCounter counter;
    if (argc > 1) {
        std::ifstream file(argv[1], std::ios::binary);
        if (!file) {
            std::cerr << argv[1] << ": cannot be opened\n";
            return 1;
        }
        counter.read(file);
    } else {
        counter.read(std::cin);
    }

    std::cout << counter.total() << " words\n";
    for (const auto &[word, count] : counter.mostFrequent(10))
        std::cout << count << '\t' << word << '\n';
}
