// The generic expression language: a small C-style expression over named values, read by
// property metadata ("suppress_expr", "readonly_expr"), breakpoint log texts and the
// expression nodes of graph documents. The build generates its lexer and parser for the C
// runtime; the actions only hand pieces to the tree builder (genericexprbuilder.h), which
// owns every part until the whole text has been read.
grammar generic_expr;

options
{
	language = C;
	// The numbers of the named tokens, in the order of the token table; the operator
	// literals take the numbers after them.
	tokenVocab = generic_expr_vocab;
}


@parser::includes
{
#include "mathlib/extended/genericexprbuilder.h"
}

@parser::context
{
	GenericExprBuilder_t *pBuilder;
}

// ---------------------------------------------------------------------------------------
// Parser

expr returns [GenericExprNode_t part = NULL]
	: c=conditional EOF { $part = c; }
	;

// The arms are logical_or: a ternary inside an arm needs parentheses.
conditional returns [GenericExprNode_t part = NULL]
	: a=logical_or { $part = a; }
	  ( '?' b=logical_or TOK_COLON c=logical_or { $part = GenericExprBuilder_Ternary( ctx->pBuilder, a, b, c ); } )?
	;

logical_or returns [GenericExprNode_t part = NULL]
	: a=logical_and { $part = a; }
	  ( DOUBLE_OR b=logical_and { $part = GenericExprBuilder_Binary( ctx->pBuilder, GENERIC_EXPR_BIN_LOG_OR, $part, b ); } )*
	;

logical_and returns [GenericExprNode_t part = NULL]
	: a=equality { $part = a; }
	  ( DOUBLE_AND b=equality { $part = GenericExprBuilder_Binary( ctx->pBuilder, GENERIC_EXPR_BIN_LOG_AND, $part, b ); } )*
	;

equality returns [GenericExprNode_t part = NULL]
	: a=relational { $part = a; }
	  ( '==' b=relational { $part = GenericExprBuilder_Binary( ctx->pBuilder, GENERIC_EXPR_BIN_EQ, $part, b ); }
	  | '!=' b=relational { $part = GenericExprBuilder_Binary( ctx->pBuilder, GENERIC_EXPR_BIN_NE, $part, b ); }
	  )*
	;

relational returns [GenericExprNode_t part = NULL]
	: a=additive { $part = a; }
	  ( '<' b=additive { $part = GenericExprBuilder_Binary( ctx->pBuilder, GENERIC_EXPR_BIN_LT, $part, b ); }
	  | '>' b=additive { $part = GenericExprBuilder_Binary( ctx->pBuilder, GENERIC_EXPR_BIN_GT, $part, b ); }
	  | '<=' b=additive { $part = GenericExprBuilder_Binary( ctx->pBuilder, GENERIC_EXPR_BIN_LTE, $part, b ); }
	  | '>=' b=additive { $part = GenericExprBuilder_Binary( ctx->pBuilder, GENERIC_EXPR_BIN_GTE, $part, b ); }
	  )*
	;

additive returns [GenericExprNode_t part = NULL]
	: a=multiplicative { $part = a; }
	  ( '+' b=multiplicative { $part = GenericExprBuilder_Binary( ctx->pBuilder, GENERIC_EXPR_BIN_ADD, $part, b ); }
	  | NEGATIVE_TOK b=multiplicative { $part = GenericExprBuilder_Binary( ctx->pBuilder, GENERIC_EXPR_BIN_SUB, $part, b ); }
	  )*
	;

multiplicative returns [GenericExprNode_t part = NULL]
	: a=unary { $part = a; }
	  ( '*' b=unary { $part = GenericExprBuilder_Binary( ctx->pBuilder, GENERIC_EXPR_BIN_MUL, $part, b ); }
	  | '/' b=unary { $part = GenericExprBuilder_Binary( ctx->pBuilder, GENERIC_EXPR_BIN_DIV, $part, b ); }
	  | '%' b=unary { $part = GenericExprBuilder_Binary( ctx->pBuilder, GENERIC_EXPR_BIN_MOD, $part, b ); }
	  )*
	;

// One sign at most: "--a" and "!!a" are refused.
unary returns [GenericExprNode_t part = NULL]
	: NEGATIVE_TOK a=postfix { $part = GenericExprBuilder_Unary( ctx->pBuilder, GENERIC_EXPR_UN_NEGATE, a ); }
	| '!' a=postfix { $part = GenericExprBuilder_Unary( ctx->pBuilder, GENERIC_EXPR_UN_NOT, a ); }
	| a=postfix { $part = a; }
	;

// One property at most: "a.b.c" is refused at the second ".".
postfix returns [GenericExprNode_t part = NULL]
	: a=primary { $part = a; }
	  ( '.' ID { $part = GenericExprBuilder_Property( ctx->pBuilder, $part, $ID ); } )?
	;

primary returns [GenericExprNode_t part = NULL]
	: OPEN_PAREN c=conditional CLOSE_PAREN { $part = c; }
	| ID OPEN_PAREN { $part = GenericExprBuilder_FunctionCall( ctx->pBuilder, $ID ); }
	  ( a=conditional { GenericExprBuilder_AddArgument( ctx->pBuilder, $part, a ); }
	    ( COMMA b=conditional { GenericExprBuilder_AddArgument( ctx->pBuilder, $part, b ); } )*
	  )?
	  CLOSE_PAREN
	| ID { $part = GenericExprBuilder_Variable( ctx->pBuilder, $ID ); }
	| LITERAL_TRUE { $part = GenericExprBuilder_Bool( ctx->pBuilder, 1 ); }
	| LITERAL_FALSE { $part = GenericExprBuilder_Bool( ctx->pBuilder, 0 ); }
	| POS_INTLITERAL { $part = GenericExprBuilder_Int( ctx->pBuilder, $POS_INTLITERAL ); }
	| POS_FLOATLITERAL { $part = GenericExprBuilder_Float( ctx->pBuilder, $POS_FLOATLITERAL ); }
	| DOUBLE_QUOTED_STRING { $part = GenericExprBuilder_String( ctx->pBuilder, $DOUBLE_QUOTED_STRING, 1 ); }
	| SINGLE_QUOTED_STRING { $part = GenericExprBuilder_String( ctx->pBuilder, $SINGLE_QUOTED_STRING, 0 ); }
	;

// ---------------------------------------------------------------------------------------
// Lexer. Where two rules match the same text the earlier one wins, so the words come
// before ID and UNRECOGNIZED stands last.

OPEN_PAREN : '(' ;
CLOSE_PAREN : ')' ;
LITERAL_TRUE : 'true' ;
LITERAL_FALSE : 'false' ;
ID : '$'? ID_CHAR ( ID_CHAR | DIGIT )* ;

POS_INTLITERAL
	: '0' ( '0'..'7' | '\'' )*
	| ( '0x' | '0X' ) ( DIGIT | 'a'..'f' | 'A'..'F' | '\'' )+
	| '1'..'9' ( DIGIT | '\'' )*
	;

POS_FLOATLITERAL
	: DIGIT+ '.' DIGIT* EXPONENT?
	| '.' DIGIT+ EXPONENT?
	| DIGIT+ EXPONENT
	;

// A string ends at its closing quote, at a line end or at the end of the text.
DOUBLE_QUOTED_STRING : DOUBLE_QUOTE_CHAR ( STRING_CHAR | SINGLE_QUOTE_CHAR )* DOUBLE_QUOTE_CHAR? ;
SINGLE_QUOTED_STRING : SINGLE_QUOTE_CHAR ( STRING_CHAR | DOUBLE_QUOTE_CHAR )* SINGLE_QUOTE_CHAR? ;

NEGATIVE_TOK : '-' ;
DOUBLE_AND : '&&' ;
DOUBLE_OR : '||' ;
COMMA : ',' ;
TOK_COLON : ':' ;
OPEN_BRACE : '{' ;
CLOSE_BRACE : '}' ;
OPEN_BRACKET : '[' ;
CLOSE_BRACKET : ']' ;
SEMICOLON : ';' ;
OP_EQUAL : '=' ;

fragment DIGIT : '0'..'9' ;
fragment ID_CHAR : 'A'..'Z' | 'a'..'z' | '_' ;
fragment EXPONENT : ( 'e' | 'E' ) ( '+' | '-' )? DIGIT+ ;
fragment DOUBLE_QUOTE_CHAR : '"' ;
fragment STRING_CHAR : ~( '\r' | '\n' | '"' | '\'' | '\\' ) | ESCAPE_CHAR | LINE_CONTINUATION ;
fragment SINGLE_QUOTE_CHAR : '\'' ;
fragment NEWLINE : '\r\n' | '\r' | '\n' ;
fragment LINE_CONTINUATION : BACKSLASH_CHAR NEWLINE ;
fragment ESCAPE_CHAR : BACKSLASH_CHAR ESCAPE_CODE ;
fragment BACKSLASH_CHAR : '\\' ;
fragment ESCAPE_CODE
	: '"' | '\'' | '\\' | 'b' | 'f' | 'n' | 'r' | 't'
	| '0'..'3' ( '0'..'7' ( '0'..'7' )? )?
	| '4'..'7' ( '0'..'7' )?
	;

SINGLE_LINE_COMMENT : '//' ~( '\r' | '\n' )* { $channel = HIDDEN; } ;
ML_COMMENT : '/*' ( options { greedy = false; } : . )* '*/' { $channel = HIDDEN; } ;
WS : ( '\t' | '\n' | '\r' | ' ' )+ { $channel = HIDDEN; } ;

UNRECOGNIZED : . ;
