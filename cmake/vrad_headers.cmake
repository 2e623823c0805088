# The headers that are installed. A header that isn't named here is the library's own business.
set(VRAD_HEADERS
  cmn/cmn_assert.h
  cmn/cmn_bitarray.h
  cmn/cmn_chunkyvector.h
  cmn/cmn_exception.h
  cmn/cmn_n10ncenter.h
  cmn/cmn_polyvector.h
  cmn/cmn_refcountobject.h
  cmn/cmn_xmlnode.h
  foundation/foundation.h
  foundation/i18n_stringtable.h
  foundation/lumtrace.h
  foundation/mem2_masterallocator.h
  foundation/sys_atomic.h
  foundation/sys_delayeddeletion.h
  foundation/sys_stream.h
  foundation/sys_umid.h
  foundation/ticktimesmatter.h
  foundation/time_convert.h
  foundation/time_typed.h
  foundation/vrad_export.h
  ndo/ndo_externalref.h
  ndo/ndo_manager.h
  ndo/ndo_object.h
  ndo/ndo_ptr.h
  ndo/ndo_stateref.h
  vrad/vrad.h
  vrad/vrad_chunk.h
  vrad/vrad_chunkref.h
  vrad/vrad_continuousdata.h
  vrad/vrad_continuousdatastream.h
  vrad/vrad_eventstream.h
  vrad/vrad_extendedevent.h
  vrad/vrad_extendedeventlist.h
  vrad/vrad_init.h
  vrad/vrad_n10n.h
  vrad/vrad_notelist.h
  vrad/vrad_scrub.h
  vrad/vrad_version.h
  vrad/vrae_chasetracker.h
  vrad/vrae_chasetrackermap.h
  vrad/vrae_event.h
  vrad/vrae_filter.h
  vrad/vrae_noteinprogress.h
  vrad/vrae_substream.h
  vrad/vrae_sysexdatabase.h
  vrad/vrae_timedevent.h
  vrad/vrae_traceutil.h
  vrad/vrae_trackstate.h)

# Of what a small host puts around the library.
set(VRAD_HOST_HEADERS
  host/host_blockplayer.h
  host/host_blockreceiver.h
  host/host_messagelist.h
  host/host_midibars.h
  host/host_midifile.h
  host/host_midiparser.h
  host/host_midireport.h
  host/host_miditiming.h
  host/host_midiwriter.h
  host/host_notepool.h
  host/host_progress.h
  host/host_projectfile.h
  host/host_song.h
  host/host_streamchecker.h
  host/host_wirebytes.h
  host/host_writereport.h)

list(JOIN VRAD_HEADERS "\n" lines)
list(JOIN VRAD_HOST_HEADERS "\n" host_lines)
string(APPEND lines "\n" ${host_lines})
file(WRITE ${PROJECT_BINARY_DIR}/installed_headers.txt "${lines}\n")
