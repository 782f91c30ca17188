// Runs a fuzz target over the files of folders, with any compiler: replay <folder>...

#include <QDir>
#include <QDirIterator>
#include <QFile>

#include <cstdint>
#include <cstdio>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);

int main(int argc, char *argv[])
{
    int files = 0;
    for (int i = 1; i < argc; ++i) {
        QDirIterator folder(QDir(argv[i]).absolutePath(), QDir::Files);
        while (folder.hasNext()) {
            QFile file(folder.next());
            if (!file.open(QIODevice::ReadOnly))
                continue;
            std::printf("%s\n", qPrintable(file.fileName()));
            std::fflush(stdout);
            const QByteArray bytes = file.readAll();
            LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t *>(bytes.constData()),
                                   size_t(bytes.size()));
            ++files;
        }
    }
    std::printf("%d files\n", files);
    return files > 0 ? 0 : 1;
}
