#include "orv/io/InputStream.h"

namespace orv::io {

int InputStream::read() {
  char byte = 0;
  return read(&byte, 1) == 1 ? static_cast<unsigned char>(byte) : -1;
}

}  // namespace orv::io
