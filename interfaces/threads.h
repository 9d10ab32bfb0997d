// The vocabulary of the thread tags that stand above every interface operation, as
// `// [host thread, instance lock]`: where a call may come from, then what it holds or needs.
//
// Threads
//   host thread       any thread of the host calling an interface: Connect, OnInput, OnEvents,
//                     transport, names, persistence. Several may call at once.
//   graph thread      the host thread that changes the graph: pins, media types, Pause, Run,
//                     Stop.
//   streaming thread  the thread that delivers audio to the input pin: Receive, the event
//                     window, the MIDI clock.
//   output worker     one per running instance, at the highest priority: all sending and pauses.
//   editor thread     the property page, its dialogs, the closed-loop test and the meters.
//   owner thread      the thread that registered a notify target, which alone receives its posts.
//   holder            the thread that holds a reference to a media sample.
//   any thread        no assumption.
//   construction, destruction
//                     while the object is made or goes, with no other thread in it.
//
// Locks, outermost first
//   InstanceLock      the registry of live instances, process-wide.
//   instance lock     the critical section of the processing class, re-entrant, shared with the
//                     filter frame and the pins, which call it the filter lock.
//   m_queueLock, CounterLock
//                     the worker's queue and the traffic counters, each held briefly.
//   SendLock          process-wide, taken alone around one port call.
//   list lock         the stored event list's own, taken alone.
// An operation tagged with a lock expects its caller to hold it; one without takes what it needs.
#pragma once
