#pragma once

#include <mpv/client.h>

#include <cstring>
#include <span>
#include <string_view>

namespace velbrix {

// The text is not copied.
inline mpv_node textNode(const char *value)
{
    mpv_node node{};
    node.format = MPV_FORMAT_STRING;
    node.u.string = const_cast<char *>(value);
    return node;
}

// Reading the values that libmpv hands out; absent ones read as zero.

inline std::span<const mpv_node> nodeList(const mpv_node &node)
{
    if (node.format != MPV_FORMAT_NODE_ARRAY)
        return {};
    return {node.u.list->values, static_cast<std::size_t>(node.u.list->num)};
}

inline const mpv_node *nodeAt(const mpv_node &node, const char *key)
{
    if (node.format != MPV_FORMAT_NODE_MAP)
        return nullptr;
    for (int i = 0; i < node.u.list->num; ++i) {
        if (std::strcmp(node.u.list->keys[i], key) == 0)
            return &node.u.list->values[i];
    }
    return nullptr;
}

inline std::int64_t nodeNumber(const mpv_node &node, const char *key)
{
    const mpv_node *const value = nodeAt(node, key);
    if (value && value->format == MPV_FORMAT_DOUBLE)
        return static_cast<std::int64_t>(value->u.double_);
    return value && value->format == MPV_FORMAT_INT64 ? value->u.int64 : 0;
}

inline std::string_view nodeText(const mpv_node &node, const char *key)
{
    const mpv_node *const value = nodeAt(node, key);
    return value && value->format == MPV_FORMAT_STRING ? value->u.string : std::string_view();
}

inline bool nodeFlag(const mpv_node &node, const char *key)
{
    const mpv_node *const value = nodeAt(node, key);
    return value && value->format == MPV_FORMAT_FLAG && value->u.flag != 0;
}

} // namespace velbrix
