// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_INTERNAL_NXLOGOLDESTFILES_H
#define CORE_LOG_INTERNAL_NXLOGOLDESTFILES_H

#include <algorithm>
#include <cstddef>
#include <vector>

#include "core/log/internal/nxLogKeptFile.h"

/// The oldest of many files, up to a number that bounds the memory.
///
/// Threads: none. Errors: std::bad_alloc is thrown.
class nxLogOldestFiles
{
public:
    explicit nxLogOldestFiles(std::size_t capacity) : _capacity(capacity) {}

    /// Keeps the file, or the older ones where there are enough. Not after EndAdding().
    void Add(const nxLogKeptFile& file)
    {
        if (_files.size() == _capacity)
        {
            _wasFull = true;
            if (!(file < _files.front()))
                return;
            std::pop_heap(_files.begin(), _files.end());
            _files.pop_back();
        }
        _files.push_back(file);
        std::push_heap(_files.begin(), _files.end());
    }

    /// Prepares for Take().
    void EndAdding() { std::make_heap(_files.begin(), _files.end(), _IsNewer); }
    /// Takes out the oldest. There is one.
    nxLogKeptFile Take()
    {
        std::pop_heap(_files.begin(), _files.end(), _IsNewer);
        const nxLogKeptFile oldest = _files.back();
        _files.pop_back();
        return oldest;
    }

    bool IsEmpty() const { return _files.empty(); }
    /// Whether some files found no room.
    bool WasFull() const { return _wasFull; }
    /// Gives the memory back.
    void Clear()
    {
        std::vector<nxLogKeptFile>().swap(_files);
        _wasFull = false;
    }

private:
    static bool _IsNewer(const nxLogKeptFile& left, const nxLogKeptFile& right) { return right < left; }

    std::size_t _capacity;
    std::vector<nxLogKeptFile> _files;  // a heap with the newest first; with the oldest first after EndAdding()
    bool _wasFull = false;
};

#endif
