#pragma once
/* What the actions of the generated parser call (C linkage: the generated files are C).
   The builder owns every part it made until the parse ends: parts that an error left
   behind are freed then, so a failed parse leaks nothing. A call given a null part (one
   that an error or the depth limit refused) answers null. */

#include <antlr3.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef struct GenericExprBuilder_s GenericExprBuilder_t;
/* A CGenericExprPart* in C clothing. */
typedef void *GenericExprNode_t;

/* The operator numbers of GenericExprUnaryOp_t and GenericExprBinaryOp_t. */
#define GENERIC_EXPR_UN_NOT 1
#define GENERIC_EXPR_UN_NEGATE 2
#define GENERIC_EXPR_BIN_MUL 1
#define GENERIC_EXPR_BIN_DIV 2
#define GENERIC_EXPR_BIN_MOD 3
#define GENERIC_EXPR_BIN_ADD 4
#define GENERIC_EXPR_BIN_SUB 5
#define GENERIC_EXPR_BIN_LT 6
#define GENERIC_EXPR_BIN_GT 7
#define GENERIC_EXPR_BIN_LTE 8
#define GENERIC_EXPR_BIN_GTE 9
#define GENERIC_EXPR_BIN_EQ 10
#define GENERIC_EXPR_BIN_NE 11
#define GENERIC_EXPR_BIN_LOG_AND 12
#define GENERIC_EXPR_BIN_LOG_OR 13

GenericExprNode_t GenericExprBuilder_Unary( GenericExprBuilder_t *pBuilder, int nOp, GenericExprNode_t pOperand );
GenericExprNode_t GenericExprBuilder_Binary( GenericExprBuilder_t *pBuilder, int nOp, GenericExprNode_t pLeft, GenericExprNode_t pRight );
GenericExprNode_t GenericExprBuilder_Ternary( GenericExprBuilder_t *pBuilder, GenericExprNode_t pCondition, GenericExprNode_t pTrue, GenericExprNode_t pFalse );
GenericExprNode_t GenericExprBuilder_Property( GenericExprBuilder_t *pBuilder, GenericExprNode_t pObject, pANTLR3_COMMON_TOKEN pName );
GenericExprNode_t GenericExprBuilder_FunctionCall( GenericExprBuilder_t *pBuilder, pANTLR3_COMMON_TOKEN pName );
void GenericExprBuilder_AddArgument( GenericExprBuilder_t *pBuilder, GenericExprNode_t pCall, GenericExprNode_t pArgument );
GenericExprNode_t GenericExprBuilder_Variable( GenericExprBuilder_t *pBuilder, pANTLR3_COMMON_TOKEN pName );
GenericExprNode_t GenericExprBuilder_Bool( GenericExprBuilder_t *pBuilder, int bValue );
GenericExprNode_t GenericExprBuilder_Int( GenericExprBuilder_t *pBuilder, pANTLR3_COMMON_TOKEN pToken );
GenericExprNode_t GenericExprBuilder_Float( GenericExprBuilder_t *pBuilder, pANTLR3_COMMON_TOKEN pToken );
GenericExprNode_t GenericExprBuilder_String( GenericExprBuilder_t *pBuilder, pANTLR3_COMMON_TOKEN pToken, int bDoubleQuoted );

#ifdef __cplusplus
}
#endif
