// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace ork::test {

// What keeps a text from being the XML that the tool writes (elements, quoted attributes, the five entities); "" when
// it is well-formed.
inline std::string xml_fault(const std::string& text)
{
    std::vector<std::string> open;
    bool had_root = false;
    for (size_t i = 0; i < text.size();) {
        if (text[i] == '&') {
            const size_t end = text.find(';', i);
            const std::string entity = end == std::string::npos ? "" : text.substr(i + 1, end - i - 1);
            if (entity != "amp" && entity != "lt" && entity != "gt" && entity != "quot" && entity != "apos")
                return "entity &" + entity;
        }
        if (text[i] != '<') {
            if (open.empty() && text[i] != '\n') return "text outside the root element";
            ++i;
            continue;
        }
        size_t end = i + 1; // the closing bracket, not counting those within quotes
        for (bool quoted = false; end < text.size() && (quoted || text[end] != '>'); ++end) {
            if (text[end] == '"') quoted = !quoted;
            if (text[end] == '<') return "bracket within a tag";
        }
        if (end >= text.size()) return "tag without an end";
        const std::string tag = text.substr(i + 1, end - i - 1), name = tag.substr(0, tag.find_first_of(" /", 1));
        if (tag[0] == '/') {
            if (open.empty() || "/" + open.back() != tag) return "unexpected <" + tag + ">";
            open.pop_back();
        } else {
            if (open.empty() && had_root) return "two root elements";
            had_root = true;
            if (tag.back() != '/') open.push_back(name);
        }
        i = end + 1;
    }
    if (!had_root) return "no element";
    return open.empty() ? "" : "<" + open.back() + "> is never closed";
}

} // namespace ork::test
