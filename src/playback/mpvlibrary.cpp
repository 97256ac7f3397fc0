#include "mpvlibrary.h"

#include <QLoggingCategory>
#include <QtConcurrent>

#include <dlfcn.h>

Q_LOGGING_CATEGORY(lcMpvLibrary, "velto.playback.mpv")

namespace {
template<typename Function>
bool resolve(void *handle, Function &function, const char *name)
{
    function = reinterpret_cast<Function>(dlsym(handle, name));
    if (!function)
        qCWarning(lcMpvLibrary, "libmpv lacks %s", name);
    return function != nullptr;
}

const MpvLibrary *open()
{
    // The name of Debian's libmpv2; the unversioned name exists only with the -dev package.
    void *handle = dlopen("libmpv.so.2", RTLD_NOW | RTLD_LOCAL);
    if (!handle) {
        qCWarning(lcMpvLibrary, "cannot open libmpv: %s", dlerror());
        return nullptr;
    }
    static MpvLibrary library;
    const bool complete = resolve(handle, library.create, "mpv_create")
        && resolve(handle, library.initialize, "mpv_initialize")
        && resolve(handle, library.terminateDestroy, "mpv_terminate_destroy")
        && resolve(handle, library.setOptionString, "mpv_set_option_string")
        && resolve(handle, library.setProperty, "mpv_set_property")
        && resolve(handle, library.setPropertyString, "mpv_set_property_string")
        && resolve(handle, library.getProperty, "mpv_get_property")
        && resolve(handle, library.observeProperty, "mpv_observe_property")
        && resolve(handle, library.commandNode, "mpv_command_node")
        && resolve(handle, library.freeNodeContents, "mpv_free_node_contents")
        && resolve(handle, library.waitEvent, "mpv_wait_event")
        && resolve(handle, library.setWakeupCallback, "mpv_set_wakeup_callback");
    return complete ? &library : nullptr;
}
}

QFuture<const MpvLibrary *> MpvLibrary::load()
{
    static const QFuture<const MpvLibrary *> loading = QtConcurrent::run(open);
    return loading;
}

const MpvLibrary *MpvLibrary::get()
{
    return load().result();
}
