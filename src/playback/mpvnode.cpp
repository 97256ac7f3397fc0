#include "mpvnode.h"

#include "mpvlibrary.h"

#include <cstring>

namespace MpvNode {

Command::Command(const char *name)
{
    arg("name", QString::fromLatin1(name));
}

Command &Command::arg(const char *key, const QString &value)
{
    m_strings.push_back(value.toUtf8());
    mpv_node node{};
    node.format = MPV_FORMAT_STRING;
    // The pointer into m_strings is taken in run(), once the vector no longer grows.
    return append(key, node, m_strings.size() - 1);
}

Command &Command::arg(const char *key, double value)
{
    mpv_node node{};
    node.format = MPV_FORMAT_DOUBLE;
    node.u.double_ = value;
    return append(key, node, std::nullopt);
}

Command &Command::arg(const char *key, qint64 value)
{
    mpv_node node{};
    node.format = MPV_FORMAT_INT64;
    node.u.int64 = value;
    return append(key, node, std::nullopt);
}

Command &Command::append(const char *key, mpv_node node, std::optional<std::size_t> stringIndex)
{
    m_keys.emplace_back(key);
    m_values.push_back(node);
    m_stringOf.push_back(stringIndex);
    return *this;
}

int Command::run(mpv_handle *mpv, mpv_node *result)
{
    std::vector<mpv_node> values = m_values;
    std::vector<char *> keys;
    for (std::size_t i = 0; i < values.size(); ++i) {
        keys.push_back(m_keys[i].data());
        if (m_stringOf[i])
            values[i].u.string = m_strings[*m_stringOf[i]].data();
    }
    mpv_node_list list{};
    list.num = int(values.size());
    list.values = values.data();
    list.keys = keys.data();
    mpv_node args{};
    args.format = MPV_FORMAT_NODE_MAP;
    args.u.list = &list;
    mpv_node ignored{};
    const int status = MpvLibrary::get()->commandNode(mpv, &args, result ? result : &ignored);
    if (!result && status >= 0)
        MpvLibrary::get()->freeNodeContents(&ignored);
    return status;
}

std::optional<QString> stringValue(const mpv_node &node)
{
    if (node.format != MPV_FORMAT_STRING)
        return std::nullopt;
    return QString::fromUtf8(node.u.string);
}

std::optional<qint64> intValue(const mpv_node &node)
{
    if (node.format != MPV_FORMAT_INT64)
        return std::nullopt;
    return node.u.int64;
}

const mpv_node *find(const mpv_node &map, const char *key)
{
    if (map.format != MPV_FORMAT_NODE_MAP || !map.u.list)
        return nullptr;
    for (int i = 0; i < map.u.list->num; ++i) {
        if (std::strcmp(map.u.list->keys[i], key) == 0)
            return &map.u.list->values[i];
    }
    return nullptr;
}

QList<const mpv_node *> elements(const mpv_node &array)
{
    QList<const mpv_node *> result;
    if (array.format != MPV_FORMAT_NODE_ARRAY || !array.u.list)
        return result;
    for (int i = 0; i < array.u.list->num; ++i)
        result.append(&array.u.list->values[i]);
    return result;
}

}
