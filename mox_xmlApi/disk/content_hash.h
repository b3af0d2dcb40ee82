// A hash by which two contents of a file are told apart.
#ifndef MOX_XMLAPI_DISK_CONTENT_HASH_H
#define MOX_XMLAPI_DISK_CONTENT_HASH_H

#include <string_view>

#include "mox_xmlApi/disk/file_stamp.hpp"

namespace mox::disk {

// Sets size and hash to those of the bytes, and `exists` to true.
void DescribeContent(std::string_view bytes, FileStamp& stamp) noexcept;

}  // namespace mox::disk

#endif
