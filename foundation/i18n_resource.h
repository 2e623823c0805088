// Texts among the resources of the module that holds this code. Not installed.
#pragma once

/// Whether modules carry texts on this system. If not, they have to be compiled in.
bool I18N_HasResources();

/// Reads a text as `I18N_StringTable::Load` does; 0 where there are no resources.
int I18N_LoadResource(int iID, wchar_t * oBuffer, int iBufferSize);
