// SPDX-License-Identifier: Apache-2.0
#include "core/log/internal/nxLogFileSurvey.h"

int nxLogFileSurvey::Place::Open(nxDirectory& directory) const
{
    const int error = directory.OpenExisting(root);
    return error != 0 || folder.empty() ? error : directory.OpenExisting(directory, folder);
}

bool nxLogFileSurvey::Begin(const Place& place)
{
    End();
    return place.Open(_root) == 0 && _folders.Open(_root) == 0;
}

void nxLogFileSurvey::End() { *this = nxLogFileSurvey(); }

nxLogFileSurvey::Met nxLogFileSurvey::Step(const Place& place)
{
    if (!_isInFolder)
        return _EnterNextFolder() ? Met::Nothing : Met::End;
    if (_files.ReadNext(_name))
        return _ReadFile(place.application) ? Met::File : Met::Nothing;
    _isInFolder = false;
    return _files.IsEmpty() ? Met::EmptyFolder : Met::Nothing;
}

// @return whether there was a name; it may be that of something else.
bool nxLogFileSurvey::_EnterNextFolder()
{
    if (!_folders.ReadNext(_name))
        return false;
    _isInFolder = nxLogKeptFile::ReadDay(_name, _file.day) && EnterFolderOf(_file) == 0 && _files.Open(_folder) == 0;
    return true;
}

bool nxLogFileSurvey::_ReadFile(const std::string& application)
{
    nxDirectoryEntry::Facts facts;
    if (!_file.ReadName(application, _name) || nxDirectoryEntry::Look(_folder, _name, facts) != 0 || !facts.isOwnFile)
        return false;
    _file.size = facts.size;
    _file.modified = facts.modified;
    return _file.form == nxLogFileForm::Plain ||
           !nxDirectoryEntry::Exists(_folder, _file.GetNameAs(application, nxLogFileForm::Plain));
}

int nxLogFileSurvey::EnterFolderOf(const nxLogKeptFile& file)
{
    if (file.day == _enteredDay && _folder.IsSound())
        return 0;
    const int error = _folder.OpenExisting(_root, file.GetFolder());
    if (error == 0)
        _enteredDay = file.day;
    return error;
}
