// SPDX-License-Identifier: GPL-3.0-or-later
//
// An ALSA sequencer with nobody at the other end, loaded before libasound into a host that will not start without one, on a
// kernel that has none (LD_PRELOAD; qtractor.py compiles and uses it). Ports and queues get numbers, events are swallowed,
// nothing ever arrives, no other client is there, and a queue has no clock to ask. It holds those calls that take a sequencer's
// handle and that qtractor makes; all others, on structures in memory alone, remain libasound's own.
#include <alsa/asoundlib.h>
#include <errno.h>
#include <stdlib.h>
#include <sys/eventfd.h>
#include <unistd.h>

struct _snd_seq
{
    int neverReadable; // for poll()
    int ports;
    int queues;
};

static const int ownClient = 128; // the first number that a kernel gives to a program
#define UNUSED __attribute__ ((unused))

int snd_seq_open (snd_seq_t** handle, UNUSED const char* name, UNUSED int streams, UNUSED int mode)
{
    *handle = calloc (1, sizeof (snd_seq_t));

    if (*handle == NULL)
        return -ENOMEM;

    (*handle)->neverReadable = eventfd (0, EFD_CLOEXEC);
    return (*handle)->neverReadable < 0 ? -errno : 0;
}

int snd_seq_close (snd_seq_t* handle)
{
    close (handle->neverReadable);
    free (handle);
    return 0;
}

int snd_seq_create_simple_port (snd_seq_t* handle, UNUSED const char* name, UNUSED unsigned int caps,
                                UNUSED unsigned int type)
{
    return handle->ports++;
}

int snd_seq_alloc_queue (snd_seq_t* handle) { return handle->queues++; }

int snd_seq_client_id (UNUSED snd_seq_t* handle) { return ownClient; }

int snd_seq_poll_descriptors_count (UNUSED snd_seq_t* handle, UNUSED short events) { return 1; }

int snd_seq_poll_descriptors (snd_seq_t* handle, struct pollfd* descriptors, unsigned int space, UNUSED short events)
{
    if (space == 0)
        return 0;

    *descriptors = (struct pollfd) { .fd = handle->neverReadable, .events = POLLIN };
    return 1;
}

int snd_seq_free_event (UNUSED snd_seq_event_t* event) { return 0; }

// Calls of one kind each: a handle, arguments that play no part, and a fixed answer.
#define ANSWER(call, answer, ...) \
    int call (UNUSED snd_seq_t* handle, ##__VA_ARGS__) { return answer; }

ANSWER (snd_seq_set_client_name, 0, UNUSED const char* name)
ANSWER (snd_seq_delete_simple_port, 0, UNUSED int port)
ANSWER (snd_seq_free_queue, 0, UNUSED int queue)
ANSWER (snd_seq_control_queue, 0, UNUSED int queue, UNUSED int type, UNUSED int value, UNUSED snd_seq_event_t* event)
ANSWER (snd_seq_get_port_info, 0, UNUSED int port, UNUSED snd_seq_port_info_t* info)
ANSWER (snd_seq_set_port_info, 0, UNUSED int port, UNUSED snd_seq_port_info_t* info)
ANSWER (snd_seq_get_queue_tempo, 0, UNUSED int queue, UNUSED snd_seq_queue_tempo_t* tempo)
ANSWER (snd_seq_set_queue_tempo, 0, UNUSED int queue, UNUSED snd_seq_queue_tempo_t* tempo)
ANSWER (snd_seq_set_queue_timer, 0, UNUSED int queue, UNUSED snd_seq_queue_timer_t* timer)
ANSWER (snd_seq_event_output, 0, UNUSED snd_seq_event_t* event)
ANSWER (snd_seq_event_output_direct, 0, UNUSED snd_seq_event_t* event)
ANSWER (snd_seq_drain_output, 0)
ANSWER (snd_seq_drop_output, 0)
ANSWER (snd_seq_drop_input, 0)
ANSWER (snd_seq_remove_events, 0, UNUSED snd_seq_remove_events_t* which)
ANSWER (snd_seq_event_input_pending, 0, UNUSED int fetch)
ANSWER (snd_seq_event_input, -EAGAIN, UNUSED snd_seq_event_t** event)
ANSWER (snd_seq_get_queue_status, -ENODEV, UNUSED int queue, UNUSED snd_seq_queue_status_t* status)
ANSWER (snd_seq_get_any_client_info, -ENOENT, UNUSED int client, UNUSED snd_seq_client_info_t* info)
ANSWER (snd_seq_get_any_port_info, -ENOENT, UNUSED int client, UNUSED int port, UNUSED snd_seq_port_info_t* info)
ANSWER (snd_seq_query_next_client, -ENOENT, UNUSED snd_seq_client_info_t* info)
ANSWER (snd_seq_query_next_port, -ENOENT, UNUSED snd_seq_port_info_t* info)
ANSWER (snd_seq_query_port_subscribers, -ENOENT, UNUSED snd_seq_query_subscribe_t* query)
ANSWER (snd_seq_subscribe_port, -ENOENT, UNUSED snd_seq_port_subscribe_t* subscription)
ANSWER (snd_seq_unsubscribe_port, -ENOENT, UNUSED snd_seq_port_subscribe_t* subscription)
