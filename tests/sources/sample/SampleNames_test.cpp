#include "sources/sample/SampleNames.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>

#include "sources/sample/SampleData.h"
#include "sources/sample/SampleWorks.h"

namespace tavrion {
namespace {

TEST(SampleWorks, everyPieceHasATitleOfItsOwn) {
    for (const SampleWork& work : sampleWorks()) {
        std::set<std::string> titles;
        for (std::uint32_t number = 0; number < work.pieceCount; ++number) {
            const std::string title = titleOfPiece(work, number);
            EXPECT_FALSE(title.empty()) << work.title;
            EXPECT_EQ(title.find_first_of("|#@"), std::string::npos) << title;
            EXPECT_TRUE(titles.insert(title).second) << work.title << ": " << title;
        }
        EXPECT_LT(work.shortest, work.longest) << work.title;
    }
}

TEST(SampleWorks, noListedPieceIsLeftOut) {
    for (const SampleWork& work : sampleWorks()) {
        const auto separators = std::count(work.pieces.begin(), work.pieces.end(), '|');
        if (separators > 0) {
            EXPECT_EQ(separators + 1, work.pieceCount) << work.title;
        }
    }
}

TEST(SampleWorks, everySetOfPlayersHasSomethingToPlay) {
    for (std::uint32_t forces = 0; forces < sampleForcesCount; ++forces) {
        EXPECT_TRUE(std::any_of(sampleWorks().begin(), sampleWorks().end(),
                                [&](const SampleWork& work) {
                                    return work.forces == static_cast<SampleForces>(forces);
                                }))
            << forces;
    }
}

TEST(SampleWorks, patternsAreFilledIn) {
    const SampleWork keys{"X", "X", "X", SampleForces::keyboard, 24, 1, 2, "Fugue in @"};
    EXPECT_EQ(titleOfPiece(keys, 0), "Fugue in C Major");
    EXPECT_EQ(titleOfPiece(keys, 3), "Fugue in C-sharp Minor");
    EXPECT_EQ(titleOfPiece(keys, 23), "Fugue in B Minor");
    const SampleWork numbers{"X", "X", "X", SampleForces::keyboard, 3, 1, 2, "Waltz No. #"};
    EXPECT_EQ(titleOfPiece(numbers, 2), "Waltz No. 3");
    const SampleWork list{"X", "X", "X", SampleForces::keyboard, 3, 1, 2, "One|Two|Three"};
    EXPECT_EQ(titleOfPiece(list, 1), "Two");
    EXPECT_EQ(titleOfPiece(list, 2), "Three");
}

TEST(SampleNames, shareOfStylesIsAHundred) {
    EXPECT_EQ(SampleData::styles.size(), sampleStyleCount);
    std::uint32_t sum = 0;
    for (std::uint32_t style = 0; style < sampleStyleCount; ++style) {
        sum += traitsOf(static_cast<SampleStyle>(style)).share;
    }
    EXPECT_EQ(sum, 100U);
}

TEST(SampleNames, aGenreIsOneOfItsStyle) {
    std::set<std::string_view> genres;
    for (std::uint64_t seed = 0; seed < 1000; ++seed) {
        genres.insert(genreOf(SampleStyle::hipHop, seed));
    }
    EXPECT_EQ(genres, (std::set<std::string_view>{"Hip-Hop/Rap", "R&B/Soul"}));
}

TEST(SampleNames, sortNamesAreWithoutTheArticleOrWithTheFamilyFirst) {
    std::uint32_t articles = 0;
    std::uint32_t people = 0;
    for (std::uint64_t seed = 0; seed < 500; ++seed) {
        for (std::uint32_t style = 0; style < sampleStyleCount; ++style) {
            const SampleArtistName artist =
                artistNamed(static_cast<SampleStyle>(style), SampleForces::keyboard, seed);
            ASSERT_FALSE(artist.name.empty());
            if (!artist.sortName) {
                EXPECT_FALSE(artist.name.starts_with("The ")) << artist.name;
            } else if (artist.name.starts_with("The ")) {
                EXPECT_EQ("The " + *artist.sortName, artist.name);
                ++articles;
            } else {
                const std::size_t comma = artist.sortName->find(", ");
                ASSERT_NE(comma, std::string::npos) << artist.name;
                EXPECT_EQ(
                    artist.sortName->substr(comma + 2) + " " + artist.sortName->substr(0, comma),
                    artist.name);
                ++people;
            }
        }
    }
    EXPECT_GT(articles, 100U);
    EXPECT_GT(people, 100U);
    EXPECT_EQ(sortTitleOf("The Lake"), "Lake");
    EXPECT_EQ(sortTitleOf("A Lake"), "Lake");
    EXPECT_EQ(sortTitleOf("Theory"), std::nullopt);
    EXPECT_EQ(sortTitleOf("The "), std::nullopt);
}

void expectFittingArticle(const std::string& title) {
    for (const std::string article : {" a ", " an "}) {
        const std::size_t place = title.find(article);
        if (place != std::string::npos) {
            const std::string next = title.substr(place + article.size());
            const bool isVowel = std::string("AEIOU").find(next.front()) != std::string::npos ||
                                 next.starts_with("Hour") || next.starts_with("Honest");
            EXPECT_EQ(isVowel, article == " an ") << title;
        }
    }
}

TEST(SampleNames, titlesAreVariedAndWhole) {
    std::set<std::string> titles;
    for (std::uint64_t seed = 0; seed < 2000; ++seed) {
        for (const std::string& title :
             {songTitleNamed(SampleStyle::rock, seed), albumTitleNamed(SampleStyle::jazz, seed),
              compilationTitleNamed("Jazz", seed)}) {
            EXPECT_FALSE(title.empty());
            EXPECT_EQ(title.find("  "), std::string::npos) << title;
            expectFittingArticle(title);
            titles.insert(title);
        }
    }
    EXPECT_GT(titles.size(), 3000U);
}

}  // namespace
}  // namespace tavrion
