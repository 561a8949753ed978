#include "map/MappedFile.h"

#include <QFile>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace mervola::map
{

MappedFile::MappedFile(const QString &path)
{
    const int fd = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        return;
    struct stat st {
    };
    if (::fstat(fd, &st) == 0 && S_ISREG(st.st_mode)) {
        m_size = st.st_size;
        // An empty file cannot be mapped but is still open: size 0.
        if (m_size == 0) {
            m_open = true;
        } else {
            void *p = ::mmap(nullptr, std::size_t(m_size), PROT_READ, MAP_PRIVATE | MAP_POPULATE, fd, 0);
            if (p != MAP_FAILED) {
                m_data = static_cast<const uchar *>(p);
                m_open = true;
            }
        }
    }
    ::close(fd);
}

MappedFile::~MappedFile()
{
    if (m_data)
        ::munmap(const_cast<uchar *>(m_data), std::size_t(m_size));
}

} // namespace mervola::map
