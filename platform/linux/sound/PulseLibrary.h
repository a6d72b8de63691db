// The functions of PulseAudio's client library that are used, under their own names without the library's prefix.
#pragma once

#include "platform/SharedLibrary.h"

#include <pulse/pulseaudio.h>

namespace voxmate::speech
{

struct PulseLibrary : LibraryFunctions {
    PulseLibrary() : LibraryFunctions("libpulse.so.0") {}

    decltype(&::pa_bytes_to_usec) bytes_to_usec = Need<decltype(&::pa_bytes_to_usec)>("pa_bytes_to_usec");
    decltype(&::pa_context_connect) context_connect = Need<decltype(&::pa_context_connect)>("pa_context_connect");
    decltype(&::pa_context_disconnect) context_disconnect =
        Need<decltype(&::pa_context_disconnect)>("pa_context_disconnect");
    decltype(&::pa_context_get_sink_info_by_name) context_get_sink_info_by_name =
        Need<decltype(&::pa_context_get_sink_info_by_name)>("pa_context_get_sink_info_by_name");
    decltype(&::pa_context_get_state) context_get_state =
        Need<decltype(&::pa_context_get_state)>("pa_context_get_state");
    decltype(&::pa_context_new_with_proplist) context_new_with_proplist =
        Need<decltype(&::pa_context_new_with_proplist)>("pa_context_new_with_proplist");
    decltype(&::pa_context_rttime_new) context_rttime_new =
        Need<decltype(&::pa_context_rttime_new)>("pa_context_rttime_new");
    decltype(&::pa_context_rttime_restart) context_rttime_restart =
        Need<decltype(&::pa_context_rttime_restart)>("pa_context_rttime_restart");
    decltype(&::pa_context_set_state_callback) context_set_state_callback =
        Need<decltype(&::pa_context_set_state_callback)>("pa_context_set_state_callback");
    decltype(&::pa_context_set_subscribe_callback) context_set_subscribe_callback =
        Need<decltype(&::pa_context_set_subscribe_callback)>("pa_context_set_subscribe_callback");
    decltype(&::pa_context_subscribe) context_subscribe =
        Need<decltype(&::pa_context_subscribe)>("pa_context_subscribe");
    decltype(&::pa_context_unref) context_unref = Need<decltype(&::pa_context_unref)>("pa_context_unref");
    decltype(&::pa_operation_cancel) operation_cancel = Need<decltype(&::pa_operation_cancel)>("pa_operation_cancel");
    decltype(&::pa_operation_unref) operation_unref = Need<decltype(&::pa_operation_unref)>("pa_operation_unref");
    decltype(&::pa_proplist_free) proplist_free = Need<decltype(&::pa_proplist_free)>("pa_proplist_free");
    decltype(&::pa_proplist_new) proplist_new = Need<decltype(&::pa_proplist_new)>("pa_proplist_new");
    decltype(&::pa_proplist_sets) proplist_sets = Need<decltype(&::pa_proplist_sets)>("pa_proplist_sets");
    decltype(&::pa_rtclock_now) rtclock_now = Need<decltype(&::pa_rtclock_now)>("pa_rtclock_now");
    decltype(&::pa_sample_spec_valid) sample_spec_valid =
        Need<decltype(&::pa_sample_spec_valid)>("pa_sample_spec_valid");
    decltype(&::pa_stream_connect_playback) stream_connect_playback =
        Need<decltype(&::pa_stream_connect_playback)>("pa_stream_connect_playback");
    decltype(&::pa_stream_disconnect) stream_disconnect =
        Need<decltype(&::pa_stream_disconnect)>("pa_stream_disconnect");
    decltype(&::pa_stream_flush) stream_flush = Need<decltype(&::pa_stream_flush)>("pa_stream_flush");
    decltype(&::pa_stream_get_sample_spec) stream_get_sample_spec =
        Need<decltype(&::pa_stream_get_sample_spec)>("pa_stream_get_sample_spec");
    decltype(&::pa_stream_get_state) stream_get_state = Need<decltype(&::pa_stream_get_state)>("pa_stream_get_state");
    decltype(&::pa_stream_get_timing_info) stream_get_timing_info =
        Need<decltype(&::pa_stream_get_timing_info)>("pa_stream_get_timing_info");
    decltype(&::pa_stream_new_with_proplist) stream_new_with_proplist =
        Need<decltype(&::pa_stream_new_with_proplist)>("pa_stream_new_with_proplist");
    decltype(&::pa_stream_set_state_callback) stream_set_state_callback =
        Need<decltype(&::pa_stream_set_state_callback)>("pa_stream_set_state_callback");
    decltype(&::pa_stream_set_write_callback) stream_set_write_callback =
        Need<decltype(&::pa_stream_set_write_callback)>("pa_stream_set_write_callback");
    decltype(&::pa_stream_unref) stream_unref = Need<decltype(&::pa_stream_unref)>("pa_stream_unref");
    decltype(&::pa_stream_update_timing_info) stream_update_timing_info =
        Need<decltype(&::pa_stream_update_timing_info)>("pa_stream_update_timing_info");
    decltype(&::pa_stream_writable_size) stream_writable_size =
        Need<decltype(&::pa_stream_writable_size)>("pa_stream_writable_size");
    decltype(&::pa_stream_write) stream_write = Need<decltype(&::pa_stream_write)>("pa_stream_write");
    decltype(&::pa_threaded_mainloop_free) threaded_mainloop_free =
        Need<decltype(&::pa_threaded_mainloop_free)>("pa_threaded_mainloop_free");
    decltype(&::pa_threaded_mainloop_get_api) threaded_mainloop_get_api =
        Need<decltype(&::pa_threaded_mainloop_get_api)>("pa_threaded_mainloop_get_api");
    decltype(&::pa_threaded_mainloop_lock) threaded_mainloop_lock =
        Need<decltype(&::pa_threaded_mainloop_lock)>("pa_threaded_mainloop_lock");
    decltype(&::pa_threaded_mainloop_new) threaded_mainloop_new =
        Need<decltype(&::pa_threaded_mainloop_new)>("pa_threaded_mainloop_new");
    decltype(&::pa_threaded_mainloop_start) threaded_mainloop_start =
        Need<decltype(&::pa_threaded_mainloop_start)>("pa_threaded_mainloop_start");
    decltype(&::pa_threaded_mainloop_stop) threaded_mainloop_stop =
        Need<decltype(&::pa_threaded_mainloop_stop)>("pa_threaded_mainloop_stop");
    decltype(&::pa_threaded_mainloop_unlock) threaded_mainloop_unlock =
        Need<decltype(&::pa_threaded_mainloop_unlock)>("pa_threaded_mainloop_unlock");
    decltype(&::pa_timeval_age) timeval_age = Need<decltype(&::pa_timeval_age)>("pa_timeval_age");
    decltype(&::pa_usec_to_bytes) usec_to_bytes = Need<decltype(&::pa_usec_to_bytes)>("pa_usec_to_bytes");
};

/// Loads the library at the first call.
const PulseLibrary& Pulse();

} // namespace voxmate::speech
