#pragma once

// libmpv, opened at run time instead of linked. Its dependency tree takes about a tenth of a second to load,
// which as a link-time dependency would all come before the first frame. Loading runs on a worker thread once
// asked for; the engine waits for it only if it needs mpv before then.

#include <mpv/client.h>

#include <QFuture>

struct MpvLibrary {
    decltype(&::mpv_create) create = nullptr;
    decltype(&::mpv_initialize) initialize = nullptr;
    decltype(&::mpv_terminate_destroy) terminateDestroy = nullptr;
    decltype(&::mpv_set_option_string) setOptionString = nullptr;
    decltype(&::mpv_set_property) setProperty = nullptr;
    decltype(&::mpv_set_property_string) setPropertyString = nullptr;
    decltype(&::mpv_get_property) getProperty = nullptr;
    decltype(&::mpv_observe_property) observeProperty = nullptr;
    decltype(&::mpv_command_node) commandNode = nullptr;
    decltype(&::mpv_free_node_contents) freeNodeContents = nullptr;
    decltype(&::mpv_wait_event) waitEvent = nullptr;
    decltype(&::mpv_set_wakeup_callback) setWakeupCallback = nullptr;

    // Starts loading unless it has started; the result is null when libmpv is missing or incomplete.
    static QFuture<const MpvLibrary *> load();
    // Waits for the load.
    [[nodiscard]] static const MpvLibrary *get();
};
