#include "storage/EventXmlTags.h"

#include "storage/EventXmlCodec.h"

namespace EventXmlCodec {
namespace detail {

QByteArray removeAllNoCase(QByteArrayView text, std::string_view needle) {
    QByteArray out;
    out.reserve(text.size());
    const char* p = text.data();
    const char* end = p + text.size();
    while (p < end) {
        const char* hit = findTagNoCase(p, end, needle);
        if (hit == nullptr) {
            out.append(p, end - p);
            break;
        }
        out.append(p, hit - p);
        p = hit + needle.size();
    }
    return out;
}

} // namespace detail

bool ContainsNoCase(QByteArrayView hay, std::string_view needle) {
    return detail::findTagNoCase(hay.data(), hay.data() + hay.size(), needle) != nullptr;
}

} // namespace EventXmlCodec
