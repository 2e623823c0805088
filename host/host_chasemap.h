// Which continuous values a player restores, and what they fall back to.
#pragma once

#include "vrad/vrae_chasetrackermap.h"

/// Controllers 1 to 119, bend, mono pressure, program and the pressure of each pitch. Controller
/// 64, bend and pressures release to 0. A player leaves the controllers of parameters out of its
/// trackers: what they mean depends on one another.
/// Thread: any. The first call takes memory. Never destroyed.
Vrae_ChaseTrackerMap const & Host_GetChaseMap();

constexpr int kHost_NumPedals = 4;
constexpr signed char kHost_Pedals[kHost_NumPedals] = {64, 66, 67, 69};

constexpr int kHost_NumParameterControllers = 8;
/// In the order in which they are sent at one time, behind the plain controllers: selections of
/// non-registered and registered parameters, then their data, then steps.
constexpr signed char kHost_ParameterControllers[kHost_NumParameterControllers] = {99, 98, 101, 100,
                                                                                   6,  38, 96,  97};

/// The place in the list above, from 1; 0 for a plain controller.
int Host_GetParameterRank(int iControllerNumber);
