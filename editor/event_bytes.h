// A stored event as the hex editor shows it, and the hex editor's bytes made into an event
// again. The way back is one loose pass: whatever fits a short message or a system exclusive
// block is kept, the rest vanishes without a word.
#pragma once

#include <cstdint>
#include <vector>

class CStoredEvent;

// The bytes the hex editor opens with: a sysex event's block; else three bytes per message
// (status, data 1, data 2, also for two-byte messages); else the single byte 00.
std::vector<std::uint8_t> EventToBytes(const CStoredEvent& event);

// Rebuilds the payload of `event` from `bytes`. A status byte 80 to EF starts a short message
// (inside sysex too, where it takes the block's place); F0 starts sysex, after which every other
// byte joins the block. Before any F0, data bytes fill the message in hand and the rest is
// dropped. Once an F0 was seen the event becomes sysex (closed with F7 when it was left open) and
// the messages are dropped; else it becomes the messages, none giving an empty event. Name,
// description, flag and pause stay.
void BytesToEvent(const std::vector<std::uint8_t>& bytes, CStoredEvent& event);
