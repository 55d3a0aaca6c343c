// LanguageDataTest: being written
