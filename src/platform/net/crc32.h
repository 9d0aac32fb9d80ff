// The CRC-32 that archives store for each file (polynomial 0xEDB88320, reflected), eight bytes at a step.
#pragma once

#include <QtGlobal>

namespace net {

// The checksum of the bytes so far continued over `size` more; begin with 0.
quint32 Crc32(quint32 checksum, const char* data, qsizetype size);

} // namespace net
