#pragma once
// Registration of the particle function classes in the "particles" type scope.

class CSchemaSystemTypeScope;

// The scope that particle classes live in.
CSchemaSystemTypeScope *ParticleTypeScope();

// Registers every particle function class, CParticleSystemDefinition and its records
// with their schema and KV3 transfer. Safe to call any number of times; only the first
// call does work.
void RegisterParticleFunctionClasses();
