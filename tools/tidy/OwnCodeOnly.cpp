#include <clang-tidy/ClangTidyCheck.h>
#include <clang-tidy/ClangTidyModule.h>
#include <clang-tidy/ClangTidyModuleRegistry.h>
#include <clang/AST/ASTContext.h>
#include <clang/ASTMatchers/ASTMatchFinder.h>
#include <clang/Basic/SourceManager.h>

#include <vector>

// A plugin of clang-tidy, which otherwise matches every declaration of every header of the system
// that a file includes, and then throws away what it found there. With Qt's and the standard
// library's that is four fifths of its time.

namespace vellumine {
namespace {

/// Finds nothing. It is called for the translation unit, which comes before all that is in it, and
/// leaves to be traversed only what is declared outside of the system's headers.
class OwnCodeOnly : public clang::tidy::ClangTidyCheck {
public:
    using ClangTidyCheck::ClangTidyCheck;

    void registerMatchers(clang::ast_matchers::MatchFinder* finder) override
    {
        finder->addMatcher(clang::ast_matchers::translationUnitDecl().bind("unit"), this);
    }

    void check(const clang::ast_matchers::MatchFinder::MatchResult& result) override
    {
        const clang::SourceManager& sources = *result.SourceManager;
        std::vector<clang::Decl*> own;
        for (clang::Decl* declaration : result.Context->getTranslationUnitDecl()->decls()) {
            if (!sources.isInSystemHeader(sources.getExpansionLoc(declaration->getLocation()))) {
                own.push_back(declaration);
            }
        }
        result.Context->setTraversalScope(own);
    }
};

class Module : public clang::tidy::ClangTidyModule {
public:
    void addCheckFactories(clang::tidy::ClangTidyCheckFactories& factories) override
    {
        factories.registerCheck<OwnCodeOnly>("vellumine-own-code-only");
    }
};

const clang::tidy::ClangTidyModuleRegistry::Add<Module> registered("vellumine", "");

} // namespace
} // namespace vellumine
