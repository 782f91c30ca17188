#include "measure/annotationtrailer.h"

#include <QBuffer>

#include <cstdint>
#include <cstdlib>

/// A file with these bytes: what the reader finds is no longer than the file.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    QByteArray bytes = QByteArray::fromRawData(reinterpret_cast<const char *>(data), int(size));
    QBuffer file(&bytes);
    file.open(QIODevice::ReadOnly);
    if (size_t(readAnnotationTrailer(file).size()) > size)
        std::abort();
    return 0;
}
