#pragma once

/// Registers the types that the documents create themselves, each in a module of its own name, 1.0.
void registerQmlTypes();

/// Publishes the languages as `Language` of Quivra.Translate 1.0; documents can't create it.
void registerLanguageType();
