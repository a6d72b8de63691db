// Gives memory that the program no longer needs back to the system.
#pragma once

namespace voxmate
{

/// Makes the heap give large blocks back as soon as they are freed, and lets the threads share two
/// heaps. Called once, before there are threads.
void KeepHeapSmall();

/// Gives back all of the heap's free memory, also what lies between blocks in use. Takes some milliseconds.
void ReturnFreeMemory();

} // namespace voxmate
