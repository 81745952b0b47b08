// SPDX-License-Identifier: MIT
// Stands for the headers that are compiled beforehand for all tests; see CMakeLists.txt.
