// LanguageTableTest: being written
