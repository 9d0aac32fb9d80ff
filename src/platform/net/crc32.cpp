#include "net/crc32.h"

#include <QtEndian>
#include <array>

namespace net {

namespace {

using Tables = std::array<std::array<quint32, 256>, 8>;

constexpr Tables MakeTables() {
    Tables tables{};
    for (quint32 value = 0; value < 256; ++value) {
        quint32 checksum = value;
        for (int bit = 0; bit < 8; ++bit) {
            checksum = (checksum & 1) != 0 ? checksum >> 1 ^ 0xEDB88320U : checksum >> 1;
        }
        tables[0][value] = checksum;
    }
    for (size_t table = 1; table < tables.size(); ++table) {
        for (size_t value = 0; value < 256; ++value) {
            const quint32 before = tables[table - 1][value];
            tables[table][value] = before >> 8 ^ tables[0][before & 0xFF];
        }
    }
    return tables;
}

constexpr Tables tables = MakeTables();

} // namespace

quint32 Crc32(quint32 checksum, const char* data, qsizetype size) {
    checksum = ~checksum;
    for (; size >= 8; size -= 8, data += 8) {
        const quint32 low = qFromLittleEndian<quint32>(data) ^ checksum;
        const quint32 high = qFromLittleEndian<quint32>(data + 4);
        checksum = tables[7][low & 0xFF] ^ tables[6][low >> 8 & 0xFF] ^ tables[5][low >> 16 & 0xFF] ^
                   tables[4][low >> 24] ^ tables[3][high & 0xFF] ^ tables[2][high >> 8 & 0xFF] ^
                   tables[1][high >> 16 & 0xFF] ^ tables[0][high >> 24];
    }
    for (; size > 0; --size, ++data) {
        checksum = checksum >> 8 ^ tables[0][(checksum ^ static_cast<uchar>(*data)) & 0xFF];
    }
    return ~checksum;
}

} // namespace net
