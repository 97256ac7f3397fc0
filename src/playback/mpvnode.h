#pragma once

// Reading and building mpv_node values without touching their unions at every call site.

#include <mpv/client.h>

#include <QByteArray>
#include <QList>
#include <QString>

#include <optional>
#include <utility>
#include <vector>

namespace MpvNode {

// A command in mpv's named-argument form ({"name": "loadfile", "url": ..., "flags": ...}). The named form is
// used because positional arguments of several commands changed between mpv releases.
class Command
{
public:
    explicit Command(const char *name);
    Command &arg(const char *key, const QString &value);
    Command &arg(const char *key, double value);
    Command &arg(const char *key, qint64 value);

    // Runs it synchronously; the result node, when wanted, is the caller's to free with mpv_free_node_contents.
    int run(mpv_handle *mpv, mpv_node *result = nullptr);

private:
    Command &append(const char *key, mpv_node node, std::optional<std::size_t> stringIndex);

    std::vector<QByteArray> m_keys;
    std::vector<QByteArray> m_strings;
    std::vector<mpv_node> m_values;
    std::vector<std::optional<std::size_t>> m_stringOf;
};

[[nodiscard]] std::optional<QString> stringValue(const mpv_node &node);
[[nodiscard]] std::optional<qint64> intValue(const mpv_node &node);
// The value under `key` of a map node, if the node is a map holding it.
[[nodiscard]] const mpv_node *find(const mpv_node &map, const char *key);
// The elements of an array node; empty for anything else.
[[nodiscard]] QList<const mpv_node *> elements(const mpv_node &array);

}
