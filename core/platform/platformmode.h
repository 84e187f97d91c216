#pragma once
// How the process was started. Each mode is on when the command line has its
// parameter, or when code (a test, a batch tool) switches it on.
//
//   test mode          "-testmode": no modal questions; automation answers them
//   headless           "-headless": no windows, no interactive services
//   customer machine   "-customer": developer-only features are hidden

bool Plat_IsInTestMode();
bool Plat_IsInHeadlessMode();
bool Plat_IsRunningOnCustomerMachine();

void Plat_SetTestMode( bool bEnabled );
void Plat_SetHeadlessMode( bool bEnabled );
void Plat_SetRunningOnCustomerMachine( bool bEnabled );
