// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// Every archive again, with a twist that must change nothing.

#include "subject.h"

#include "common/tarchecksums.h"

namespace Varnel::Test {

namespace {

constexpr qsizetype BLOCK_SIZE = 512;

// Of a header: where its fields are.
constexpr qsizetype MODE = 100;
constexpr qsizetype SIZE = 124;
constexpr qsizetype TYPE = 156;

QByteArray withModes(QByteArray tar, int mode)
{
    const QByteArray digits = QByteArray::number(mode, 8).rightJustified(7, '0');
    for (qsizetype begin = 0; begin + BLOCK_SIZE <= tar.size();) {
        const char type = tar[begin + TYPE];
        if (type == '0' || type == '5')
            tar.replace(begin + MODE, digits.size(), digits);
        // A size that is a lie leads behind the end, where nothing is left to change.
        bool isNumber = false;
        const qint64 size = tar.sliced(begin + SIZE, 11).toLongLong(&isNumber, 8);
        if (!isNumber || size < 0)
            break;
        begin += BLOCK_SIZE + (size + BLOCK_SIZE - 1) / BLOCK_SIZE * BLOCK_SIZE;
    }
    mendTarChecksums(reinterpret_cast<uint8_t *>(tar.data()), size_t(tar.size()));
    return tar;
}

} // namespace

QList<Case> withOddRights(const QList<Case> &cases)
{
    QList<Case> variants;
    for (const Case &original : cases) {
        for (const int mode : {0555, 0000, 0111, 02775, 04755}) {
            if (!original.tar)
                continue;
            Case variant = original;
            variant.name += QString(", mode %1").arg(mode, 4, 8, QChar(u'0'));
            variant.tar = [make = original.tar, mode] {
                return TarBuilder().raw(withModes(make().unfinished(), mode));
            };
            variants.append(variant);
        }
    }
    return variants;
}

QList<Case> withoutCmake(const QList<Case> &cases)
{
    QList<Case> variants;
    for (const Case &original : cases) {
        if (!original.tar)
            continue;
        Case variant = original;
        variant.name += ", without cmake";
        if (original.failsWithoutCmake) {
            variant.end = End::NotUnpacked;
            variant.remains.append(QString::fromLatin1(TOP.chopped(1))); // as far as it came
        }
        variant.prepare = [prepare = original.prepare](World &world) {
            if (prepare)
                prepare(world);
            world.hideCmake();
        };
        variants.append(variant);
    }
    return variants;
}

} // namespace Varnel::Test
