// The host's array values.
#pragma once

// An array value of the host. The library only hands pointers to it around and never looks inside.
class hxArray;
